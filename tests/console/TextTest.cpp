// What becomes of written bytes on a terminal.
#include "tests/console/ShownConsole.h"

#include <thread>

using namespace platform;

namespace {

std::string Shown(std::string_view text, std::size_t step = std::string::npos) {
    CShownConsole console(60, 4);
    for (; !text.empty(); text.remove_prefix(std::min(step, text.size()))) {
        console.Write(text.substr(0, step));
        console.Show();
    }
    return console.Row(0);
}

} // namespace

TEST(ConsoleText, Utf8IsShownWholeAndByteByByte) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"caf\u00E9 \u20AC \U0001F600.", "caf\u00E9 \u20AC \U0001F600."},
        {"e\u0301|", "e\u0301|"},       // a combining accent
        {"\xE2\x82|", "\u0393\u00E9|"}, // cut off
        {"\xF0\x9F\x98|", "\u2261\u0192\u00FF|"},
        {"\xF0\x80\x80|", "\u2261\u00C7\u00C7|"}, // overlong
        {"\xC0\xAF|", "\u2514\u00BB|"},
        {"\xED\xA0\x80|", "\u03C6\u00E1\u00C7|"},           // a surrogate
        {"\xF4\x90\xBF|", "\u2320\u00C9\u2510|"},           // beyond the last character
        {"\xE2\xC3\xA9|", "\u0393\u00E9|"},                 // begins anew
        {"\xE9t\xE9", "\u0398t"},                           // Latin-1, the last one unfinished
        {"\u009BJ\u0085|", "\u00A2J\u00E0|"},               // C1 controls
        {"\u202Ex\u2066y\u200F|", "\uFFFDx\uFFFDy\uFFFD|"}, // directions
        {"\u2028\u2029\uFEFF\uFFFF|", "\uFFFD\uFFFD\uFFFD\uFFFD|"},
        {"\u2764\uFE0F|", "\u2764|"}, // a variation selector
    };
    for (const auto& [written, shown] : cases) {
        EXPECT_EQ(Shown(written), shown);
        EXPECT_EQ(Shown(written, 1), shown);
    }
}

TEST(ConsoleText, AnUnfinishedCharacterIsGivenUpWhenSomethingElseComes) {
    CShownConsole console;
    console.Write("a\xE2\x82");
    console.Show();
    EXPECT_EQ(console.Row(0), "a");
    console.output.SetPosition({5, 0});
    console.Write("\xAC\xC3");
    console.output.SetAttribute(0x0A);
    console.Write("b");
    console.Show();
    EXPECT_EQ(console.Row(0), "a\u0393\u00E9  \u00BC\u251Cb");
}

TEST(ConsoleText, TheTitleIsCleanAndNotCutInsideOfACharacter) {
    CShownConsole console;
    const std::string longTitle(255, 'x');
    const std::pair<std::string, std::string> titles[] = {
        {"COM1\x1b]2;evil\a \u009C\xFF \u00E9", "COM1]2;evil  \u00E9"},
        {longTitle + "\u00E9", longTitle}};
    for (const auto& [title, shown] : titles) {
        console.output.SetTitle(title);
        console.Show();
        EXPECT_EQ(console.GetScreen().GetTitle(), shown);
    }
    for (const char* type : {"vt220", "linux", "ansi", "sun", "no-such-terminal"})
        EXPECT_FALSE(CConsoleTitle::IsPossible(type)) << type;
    EXPECT_TRUE(CConsoleTitle::IsPossible("foot-direct")); // known without an entry
}

TEST(ConsoleText, WaitsForTheTerminalOnceTheBufferIsFull) {
    CShownConsole console;
    const std::string text(400'000, '\a');
    std::string got;
    std::thread reader([&] { got = console.GetLine().Hear(text.size()); });
    EXPECT_TRUE(console.Write(text));
    console.output.End();
    reader.join();
    EXPECT_EQ(got, text);
}
