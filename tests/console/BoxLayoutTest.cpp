// The text of a message box and where it stands, without a terminal.
#include "console/BoxLayout.h"
#include "tests/support/Screen.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace platform;

namespace {

std::string Wrapped(std::string_view text, int columns) {
    std::string lines;
    for (const BoxLine& line : WrapText(text, columns))
        lines += line.text + '|';
    return lines;
}

// What a text says, however it is wrapped.
std::string WithoutBlanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

// Words, blanks, line ends, wide and combining characters, and any bytes.
std::string RandomText(std::mt19937& random) {
    static constexpr std::string_view kPieces[] = {
        "word", "a",  " ",        "  ",           "\n",           "\r\n",       "\t",
        "\r",   "\b", "\x1b[2J",  "\xE4\xB8\xAD", "e\xCC\x81",    "\xCC\x81",   "\xC2\x9B",
        "\xFF", "\0", "\xE2\x82", "\xE2\x80\xAE", "\xEF\xB8\x8F", "caf\xC3\xA9"};
    std::string text;
    for (auto pieces = random() % 40; pieces > 0; --pieces) {
        const std::string_view piece = kPieces[random() % std::size(kPieces)];
        for (auto times = random() % 200 == 0 ? 300 : 1; times > 0; --times)
            text += piece;
    }
    // None that begins a character: terminals disagree on the width of rare ones.
    for (auto bytes = random() % 8; bytes > 0; --bytes)
        text += static_cast<char>(random() % 2 == 0 ? random() % 0xC0 : 0xF5 + random() % 11);
    return text;
}

} // namespace

TEST(BoxText, WrapsAtBlanksAndDrawsEverything) {
    const struct {
        std::string_view text;
        int columns;
        std::string lines;
    } cases[] = {
        {"", 10, "|"},
        {"one two three", 13, "one two three|"},
        {"one two three", 12, "one two|three|"},
        {"one two three", 7, "one two|three|"},
        {"one  two   ", 4, "one|two|"},
        {"  one two", 6, "  one|two|"},
        {"abcdefgh ij", 4, "abcd|efgh|ij|"},
        {"a\r\n\r\nb\nc\n", 10, "a||b|c||"},
        {"a\rb", 10, "a\u266Ab|"},
        {"a\tb", 10, "a       b|"},
        {"a\tb", 5, "a|b|"},
        {"\x1b[31m\x07", 10, "\xE2\x86\x90[31m\xE2\x80\xA2|"},
        {"\xE9x\xE2\x82\r\ny\xC3", 10, "\u0398x\u0393\u00E9|y\u251C|"},
        {"\xE4\xB8\xAD\xE6\x96\x87\xE4\xB8\xAD", 5, "\xE4\xB8\xAD\xE6\x96\x87|\xE4\xB8\xAD|"},
        {"\xE4\xB8\xAD", 1, "\uFFFD|"},
        {"ae\xCC\x81z", 2, "ae\xCC\x81|z|"},
        {"\xCC\x81", 2, " \xCC\x81|"}, // joins a blank, not the box's edge
    };
    for (const auto& text : cases)
        EXPECT_EQ(Wrapped(text.text, text.columns), text.lines) << text.text;
}

// In a window of any size everything can be read, nothing is drawn outside of it or over something
// else, and the cursor is on the button; a terminal sees no control function.
TEST(BoxLayout, AnyBytesAreReadableInEveryWindow) {
    std::mt19937 random(11);
    CScreen screen(2, 80);
    for (int round = 0; round < 4000; ++round) {
        const char* const captions[] = {"", "Error", "A caption that needs more than one row"};
        const BoxContent content = {captions[random() % 3], RandomText(random), "!i"[random() % 3]};
        const int columns = static_cast<int>(2 + random() % (round % 2 == 0 ? 15 : 78));
        const int rows = static_cast<int>(1 + random() % 24); // one column is not enough for all
        const CBoxLayout layout(content, columns, rows);
        std::string bars;
        std::string read;
        for (int top = 0; top <= layout.LastTop(); ++top) {
            std::set<int> used;
            bool isNew = true; // of a page but the last, the first line
            for (const BoxRow& row : layout.Rows(top)) {
                ASSERT_TRUE(row.row >= 0 && row.row < rows && row.column >= 0);
                ASSERT_TRUE(used.insert(row.row).second) << "two of them in row " << row.row;
                ASSERT_LE(row.text.size(), CBoxLayout::kMostRowBytes);
                screen.Feed("\x1b[H" + row.text);
                ASSERT_EQ(screen.GetCursor().row, 0);
                ASSERT_LE(row.column + screen.GetCursor().col, columns) << row.text;
                ASSERT_TRUE(screen.GetOddities().empty() && screen.GetReplies().empty());
                if (row.row == layout.ButtonRow() && rows > 1) {
                    const int at = layout.ButtonColumn() - row.column;
                    ASSERT_TRUE(columns < 3 || row.text[static_cast<std::size_t>(at)] == 'O');
                } else if (row.reversed) {
                    bars += top == 0 ? row.text : "";
                } else if (isNew) {
                    read += row.text;
                    isNew = top == layout.LastTop();
                }
            }
        }
        const std::string all = WithoutBlanks(bars + read);
        std::string text;
        for (const BoxLine& line : LinesOf(content.text))
            text += line.text;
        for (const std::string& part : {content.caption, std::string(1, content.sign), text})
            ASSERT_NE(all.find(WithoutBlanks(part.c_str())), std::string::npos)
                << part << " in " << columns << "x" << rows << ": " << all;
    }
}
