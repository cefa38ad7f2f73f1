#include "script/ScriptFormat.h"

#include "script/ScriptError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

FormatValue Number(std::int32_t number) {
    return {false, number, {}};
}

FormatValue Text(std::string_view text) {
    return {true, 0, text};
}

struct Case {
    std::string_view format;
    std::vector<FormatValue> values;
    std::string expected;
};

TEST(ScriptFormat, FormatsValues) {
    const Case cases[] = {
        {"%05i|%-4s|%c", {Number(42), Text("ab"), Number(65)}, "00042|ab  |A"},
        {"%i %i", {Number(-2147483647 - 1), Number(0)}, "-2147483648 0"},
        {"%5i|%-5i|%-05i|%05i",
         {Number(7), Number(7), Number(7), Number(-42)},
         "    7|7    |70000|00-42"},
        {"%2s|%4s|%04s|%0s", {Text("abc"), Text("ab"), Text("ab"), Text("")}, "abc|  ab|00ab|"},
        {"%3c%-3c|%c", {Number('x'), Number(0x141), Number(-1)}, "  xA  |\xFF"},
        // What is no conversion takes no value.
        {"%d%%", {Number(5)}, "d%"},
        {"%-08d%5%%I", {}, "d%I"},
        {"%--5i", {}, "-5i"},
        {"%5-i", {}, "-i"},
        // A format that ends inside a conversion.
        {"a%", {Number(1)}, "a"},
        {"a%-12", {Number(1)}, "a"},
        {"", {Number(1)}, ""},
        // A value's own '%' is no conversion.
        {"%s%i", {Text("%i%%"), Number(3)}, "%i%%3"},
    };
    for (const Case& test : cases) {
        std::string text = "left over";
        EXPECT_EQ(FormatScript(test.format, test.values, text), 0u) << test.format;
        EXPECT_EQ(text, test.expected) << test.format;
    }
}

TEST(ScriptFormat, RefusesValuesThatDoNotSuit) {
    const std::string beyondCut = std::string(300, 'x') + "%i";
    const struct {
        std::string_view format;
        std::vector<FormatValue> values;
        DWORD error;
    } cases[] = {
        {"%i", {}, ERR_ARG_COUNT},       {"%s%c", {Text("a")}, ERR_ARG_COUNT},
        {"%s", {Number(0)}, ERR_SYNTAX}, {"%i", {Text("1")}, ERR_SYNTAX},
        {"%c", {Text("1")}, ERR_SYNTAX}, {"%i%s", {Text("1")}, ERR_SYNTAX}, // the first one counts
        {beyondCut, {}, ERR_ARG_COUNT},  {beyondCut, {Text("1")}, ERR_SYNTAX},
    };
    for (const auto& test : cases) {
        std::string text;
        EXPECT_EQ(FormatScript(test.format, test.values, text), test.error) << test.format;
    }
}

TEST(ScriptFormat, CutsAt255Characters) {
    const std::string longText(100'000, 'y');
    const Case cases[] = {
        {longText, {}, std::string(255, 'y')},
        {"a%s%i", {Text(longText), Number(1)}, 'a' + std::string(254, 'y')},
        {"%4294967297i", {Number(7)}, std::string(254, ' ') + '7'},
        {"ab%099999999999999999999s", {Text("c")}, "ab" + std::string(253, '0')},
        {"%-300c%c", {Number('x'), Number('y')}, 'x' + std::string(254, ' ')},
    };
    for (const Case& test : cases) {
        std::string text;
        EXPECT_EQ(FormatScript(test.format, test.values, text), 0u);
        EXPECT_EQ(text, test.expected);
    }
}

} // namespace
