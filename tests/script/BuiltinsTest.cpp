#include "script/BuiltinTable.h"
#include "script/Script.h"
#include "script/TextParts.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

// Calls a built-in by its name, as the engine does.
ScriptWord Call(CVScript& script, std::string_view name, const std::vector<ScriptWord>& words) {
    for (DWORD index = 0; index < BUILTIN_COUNT; ++index) {
        if (g_Builtins[index].name == name)
            return g_Builtins[index].handler(script,
                                             {words.data(), static_cast<DWORD>(words.size())});
    }
    ADD_FAILURE() << name;
    return {};
}

// A text of any length, where a script finds it.
ScriptWord Store(CVScript& script, std::string_view text) {
    script.Results()[EResponse::SendCommand] = text;
    return ScriptWord::Text(CScriptMemory::ResponseLocation(EResponse::SendCommand));
}

std::string Bytes(std::size_t from, std::size_t count) {
    std::string bytes;
    for (std::size_t index = from; index < from + count; ++index)
        bytes += static_cast<char>('A' + index % 59);
    return bytes;
}

TEST(TextBuiltins, PartsStayInTheTextAndTheBuffer) {
    const std::string shortText = Bytes(0, 6);
    const std::string longText = Bytes(0, 1000);
    const struct {
        std::string_view name;
        std::string_view text;
        std::vector<std::int32_t> numbers;
        std::string expected;
    } cases[] = {
        {"StringLeft", shortText, {2}, Bytes(0, 2)},
        {"StringLeft", shortText, {kMost}, shortText},
        {"StringLeft", shortText, {-1}, ""},
        {"StringLeft", longText, {kMost}, Bytes(0, 259)},
        {"StringRight", shortText, {2}, Bytes(4, 2)},
        {"StringRight", shortText, {kMost}, shortText},
        {"StringRight", shortText, {0}, ""},
        {"StringRight", shortText, {kLeast}, ""},
        {"StringRight", longText, {10}, Bytes(990, 10)},
        {"StringRight", longText, {kMost}, Bytes(741, 259)},
        {"StringMid", shortText, {1, 3}, Bytes(1, 3)},
        {"StringMid", shortText, {4, kMost}, Bytes(4, 2)},
        {"StringMid", shortText, {6, 1}, ""},
        {"StringMid", shortText, {kMost, kMost}, ""},
        {"StringMid", shortText, {-1, 3}, ""},
        {"StringMid", shortText, {kLeast, kMost}, ""},
        {"StringMid", shortText, {1, kLeast}, ""},
        {"StringMid", longText, {700, kMost}, Bytes(700, 259)},
    };
    for (const auto& test : cases) {
        CVScript script;
        std::vector<ScriptWord> words = {Store(script, test.text)};
        for (const std::int32_t number : test.numbers)
            words.push_back(ScriptWord::Integer(number));
        const ScriptWord result = Call(script, test.name, words);
        EXPECT_TRUE(result.text);
        EXPECT_EQ(script.ReadText(result), test.expected) << test.name << ' ' << test.numbers[0];
        EXPECT_FALSE(script.HasError());
    }
}

// A result may be the argument of the next call of the same function.
TEST(TextBuiltins, ResultsAreMadeFromResults) {
    CVScript script;
    const std::string text = Bytes(0, 200);
    const auto number = [](std::int32_t value) { return ScriptWord::Integer(value); };
    const ScriptWord right = Call(script, "StringRight", {Store(script, text), number(150)});
    EXPECT_EQ(script.ReadText(Call(script, "StringRight", {right, number(100)})), Bytes(100, 100));
    ScriptWord middle = Call(script, "StringMid", {Store(script, text), number(10), number(190)});
    middle = Call(script, "StringMid", {middle, number(10), number(150)});
    EXPECT_EQ(script.ReadText(middle), Bytes(20, 150));
    EXPECT_EQ(script.ReadText(Call(script, "StringCat", {middle, middle})),
              Bytes(20, 150) + Bytes(20, 105));
}

TEST(TextParts, NumbersAndOrder) {
    const std::pair<std::string_view, std::int32_t> numbers[] = {{"  -12ab", -12},
                                                                 {"x", 0},
                                                                 {"", 0},
                                                                 {" \t\n\v\f\r+7", 7},
                                                                 {"+-1", 0},
                                                                 {"- 1", 0},
                                                                 {"2147483648", kLeast},
                                                                 {"-2147483648", kLeast},
                                                                 {"4294967297", 1},
                                                                 {"0x10", 0}};
    for (const auto& [text, expected] : numbers)
        EXPECT_EQ(NumberOf(text), expected) << text;

    EXPECT_EQ(CompareTexts("a", "B"), 1);
    EXPECT_EQ(CompareTexts("\x80", "z"), 1);
    EXPECT_EQ(CompareTexts("ab", "abc"), -1);
    EXPECT_EQ(CompareTextsIgnoringCase("abc", "ABD"), -1);
    EXPECT_EQ(CompareTextsIgnoringCase("abC", "ABc"), 0);
    EXPECT_EQ(CompareTextsIgnoringCase("Z", "_"), 1); // 'Z' alone would sort before it
    EXPECT_EQ(CompareTextsIgnoringCase("\xC4", "\xE4"), -1);
    EXPECT_EQ(FindText("abcdef", "cd"), 2);
    EXPECT_EQ(FindText("abcdef", "x"), -1);
}

} // namespace
