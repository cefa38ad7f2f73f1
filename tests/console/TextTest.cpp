// What becomes of written bytes on a terminal.
#include "tests/console/ShownConsole.h"

using namespace platform;

namespace {

constexpr const char* kFffd = "\xEF\xBF\xBD";

std::string Shown(std::string_view text, std::size_t step = std::string::npos) {
    CShownConsole console(60, 4);
    console.Clear();
    for (; !text.empty(); text.remove_prefix(std::min(step, text.size()))) {
        console.Write(text.substr(0, step));
        console.Show();
    }
    return console.Row(0);
}

} // namespace

TEST(ConsoleText, Utf8IsShownWholeAndByteByByte) {
    const std::string r = kFffd;
    const struct {
        std::string_view written;
        std::string shown;
    } cases[] = {
        {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80.",
         "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80."},
        {"e\xCC\x81|", "e\xCC\x81|"},   // a combining accent
        {"\xE2\x82|", "\u0393\u00E9|"}, // cut off
        {"\xF0\x9F\x98|", "\u2261\u0192\u00FF|"},
        {"\xF0\x80\x80|", "\u2261\u00C7\u00C7|"}, // overlong
        {"\xC0\xAF|", "\u2514\u00BB|"},
        {"\xED\xA0\x80|", "\u03C6\u00E1\u00C7|"},     // a surrogate
        {"\xF4\x90\xBF|", "\u2320\u00C9\u2510|"},     // beyond the last character
        {"\xE2\xC3\xA9|", "\u0393\u00E9|"},           // begins anew
        {"\xE9t\xE9", "\u0398t"},                     // Latin-1, the last one unfinished
        {"\xC2\x9BJ\xC2\x85|", "\xC2\xA2J\xC3\xA0|"}, // C1 controls
        {"\xE2\x80\xAEx\xE2\x81\xA6y\xE2\x80\x8F|", r + "x" + r + "y" + r + "|"}, // directions
        {"\xE2\x80\xA8\xE2\x80\xA9\xEF\xBB\xBF\xEF\xBF\xBF|", r + r + r + r + "|"},
        {"\xE2\x9D\xA4\xEF\xB8\x8F|", "\xE2\x9D\xA4|"}, // a variation selector
    };
    for (const auto& text : cases) {
        EXPECT_EQ(Shown(text.written), text.shown);
        EXPECT_EQ(Shown(text.written, 1), text.shown);
    }
}

TEST(ConsoleText, AnUnfinishedCharacterIsGivenUpWhenSomethingElseComes) {
    CShownConsole console;
    console.Clear();
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
    for (const auto& [title, shown] :
         {std::pair{std::string("COM1\x1b]2;evil\a \xC2\x9C\xFF \xC3\xA9"),
                    std::string("COM1]2;evil  \xC3\xA9")},
          std::pair{longTitle + "\xC3\xA9", longTitle}}) {
        console.output.SetTitle(title);
        console.Show();
        EXPECT_EQ(console.screen.GetTitle(), shown);
    }
    for (const char* type : {"vt220", "linux", "ansi", "sun", "no-such-terminal"})
        EXPECT_FALSE(CConsoleTitle::IsPossible(type)) << type;
    EXPECT_TRUE(CConsoleTitle::IsPossible("foot-direct")); // known without an entry
}
