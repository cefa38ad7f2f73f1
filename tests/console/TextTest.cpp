// What becomes of written bytes on a terminal.
#include "tests/console/Terminal.h"

#include "platform/ConsoleGlyphs.h"

#include <gtest/gtest.h>

#include <random>

using namespace platform;

namespace {

constexpr const char* FFFD = "\xEF\xBF\xBD";

std::string Shown(std::string_view text) {
    Console console(60, 4);
    console.Clear();
    Write(console.output, text);
    console.Show();
    return console.terminal.Row(0);
}

std::string ShownByteByByte(std::string_view text) {
    Console console(60, 4);
    console.Clear();
    for (const char byte : text) {
        Write(console.output, {&byte, 1});
        console.Show();
    }
    return console.terminal.Row(0);
}

} // namespace

TEST(ConsoleText, NoByteIsAControlFunction) {
    for (int value = 0; value < 256; ++value) {
        const auto byte = static_cast<std::uint8_t>(value);
        if (byte >= 0x07 && byte <= 0x0D && byte != 0x0B && byte != 0x0C)
            continue; // BEL BS TAB LF CR
        const std::string one(1, static_cast<char>(byte));
        const bool undecided = byte >= 0xC2 && byte <= 0xF4;
        std::string picture(byte < 0xA0 ? PictureOf(byte) : REPLACEMENT);
        EXPECT_EQ(Shown("[" + one + "x"), "[" + picture + "x") << value;
        EXPECT_EQ(Shown(one + "[2J" + one + "]0;t\a" + one + "c|"),
                  picture + "[2J" + picture + "]0;t" + picture + "c|")
            << value;
        if (undecided) {
            EXPECT_EQ(Shown("[" + one), "[") << value;
        }
    }
}

// Whatever comes, the bytes that go out have ESC only where the console itself put one, and nothing
// but cells, the cursor and the bell ever changes.
TEST(ConsoleText, RandomBytesLeaveTheTerminalAlone) {
    std::mt19937 random(7);
    Console console(40, 10);
    console.Clear();
    std::string written;
    for (int index = 0; index < 200'000; ++index)
        written += static_cast<char>(random() & 0xFF);
    for (std::size_t from = 0; from < written.size(); from += 1000) {
        Write(console.output, std::string_view(written).substr(from, 1000));
        console.Show();
    }
    const std::string& raw = console.terminal.Raw();
    for (std::size_t at = raw.find('\x1b'); at != std::string::npos;
         at = raw.find('\x1b', at + 1)) {
        std::size_t end = at + 2; // a backspace in the last column is the only sequence
        while (end < raw.size() && raw[end] >= '0' && raw[end] <= '9')
            ++end;
        ASSERT_EQ(raw[at + 1], '[');
        ASSERT_EQ(raw[end], 'G');
    }
    EXPECT_EQ(raw.find_first_of("\x0B\x0C\x0E\x0F\x18\x1A\x7F"), std::string::npos);
    EXPECT_EQ(console.terminal.Title(), "");
}

TEST(ConsoleText, Utf8IsShownWholeAndByteByByte) {
    struct Case {
        std::string_view written;
        std::string shown;
    };
    const std::string r = FFFD;
    const Case cases[] = {
        {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80.",
         "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80."},
        {"e\xCC\x81|", "e\xCC\x81|"},                // a combining accent
        {"\xE2\x82|", r + "|"},                      // cut off: one for the part that was right
        {"\xF0\x9F\x98|", r + "|"},                  //
        {"\xF0\x80\x80|", r + "\xC3\x87\xC3\x87|"},  // overlong: not even a beginning
        {"\xC0\xAF|", r + r + "|"},                  //
        {"\xED\xA0\x80|", r + r + "\xC3\x87|"},      // a surrogate
        {"\xF4\x90\xBF|", r + "\xC3\x89" + r + "|"}, // beyond the last character
        {"\xE2\xC3\xA9|", r + "\xC3\xA9|"},          // begins anew
        {"\xC2\x9B"
         "2J\xC2\x85|",
         "\xC2\xA2"
         "2J\xC3\xA0|"}, // C1 controls
        {"\xE2\x80\xAE"
         "a\xE2\x81\xA6"
         "b\xE2\x80\x8F|",
         r + "a" + r + "b" + r + "|"}, // directions
        {"\xE2\x80\xA8\xE2\x80\xA9\xEF\xBB\xBF\xEF\xBF\xBF|", r + r + r + r + "|"},
        {"\xE2\x9D\xA4\xEF\xB8\x8F|", "\xE2\x9D\xA4|"}, // a variation selector
    };
    for (const Case& text : cases) {
        EXPECT_EQ(Shown(text.written), text.shown);
        EXPECT_EQ(ShownByteByByte(text.written), text.shown);
    }
}

TEST(ConsoleText, AnUnfinishedCharacterIsGivenUpWhenSomethingElseComes) {
    Console console;
    console.Clear();
    Write(console.output, "a\xE2\x82");
    console.Show();
    EXPECT_EQ(console.terminal.Row(0), "a");
    console.output.SetPosition({5, 0});
    Write(console.output, "\xAC\xC3");
    console.output.SetAttribute(0x0A);
    Write(console.output, "b");
    console.Show();
    EXPECT_EQ(console.terminal.Row(0), std::string("a") + FFFD + "   " + FFFD + FFFD + "b");
}

TEST(ConsoleText, ControlsMoveTheCursorAsOnAConsole) {
    struct Case {
        std::string_view written;
        std::string firstRow;
        std::string secondRow;
        COORD cursor;
    };
    const Case cases[] = {
        {"ab\ncd", "ab", "cd", {2, 1}},    // LF goes to the first column
        {"ab\r\ncd", "ab", "cd", {2, 1}},  //
        {"abc\rX", "Xbc", "", {1, 0}},     //
        {"ab\b\b\b\bX", "Xb", "", {1, 0}}, // not beyond the first column
        {"a\tb", "a       b", "", {9, 0}}, //
        {"12345678901234567\tX", "12345678901234567  X", "", {19, 0}}, // a tab ends in the last one
        {"12345678901234567890", "12345678901234567890", "", {19, 0}}, // no wrap yet
        {"12345678901234567890X", "12345678901234567890", "X", {1, 1}},
        {"12345678901234567890\nX", "12345678901234567890", "X", {1, 1}},
        {"12345678901234567890\rX", "X2345678901234567890", "", {1, 0}},
        {"12345678901234567890\bX", "123456789012345678X0", "", {19, 0}},
        {"12345678901234567890\tX", "12345678901234567890", "X", {1, 1}},
        {"1234567890123456789\xE4\xB8\xADX", "1234567890123456789", "\xE4\xB8\xADX", {3, 1}},
        {"123456789012345678\xE4\xB8\xADX", "123456789012345678\xE4\xB8\xAD", "X", {1, 1}},
    };
    for (const Case& text : cases) {
        Console console(20, 3);
        console.Clear();
        Write(console.output, text.written);
        console.Show();
        EXPECT_EQ(console.terminal.Row(0), text.firstRow) << text.written;
        EXPECT_EQ(console.terminal.Row(1), text.secondRow) << text.written;
        EXPECT_EQ(CursorOf(console.output).X, text.cursor.X) << text.written;
        EXPECT_EQ(CursorOf(console.output).Y, text.cursor.Y) << text.written;
    }
}

TEST(ConsoleText, TheBellRings) {
    Console console;
    Write(console.output, "\a\a");
    console.Show();
    EXPECT_EQ(console.terminal.Bells(), 2);
}

TEST(ConsoleText, TheTitleIsCleanAndComesBack) {
    Console console;
    const std::string longTitle(255, 'x');
    console.output.SetTitle("COM1\x1b]2;evil\a \xC2\x9C\xFF \xC3\xA9");
    console.Show();
    EXPECT_EQ(console.terminal.Title(), "COM1]2;evil  \xC3\xA9");
    console.output.SetTitle(longTitle + "\xC3\xA9"); // not cut inside of a character
    console.Show();
    EXPECT_EQ(console.terminal.Title(), longTitle);
    console.terminal.ForgetRaw();
    console.output.End();
    console.terminal.Catch();
    EXPECT_NE(console.terminal.Raw().find("\x1b[23;0t"), std::string::npos);

    Console without(20, 5, "linux");
    without.output.SetTitle("COM1");
    without.Show();
    EXPECT_EQ(without.terminal.Raw(), "");
}
