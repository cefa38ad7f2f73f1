// The text of a message box and where it stands, without a terminal.
#include "console/BoxLayout.h"
#include "tests/support/Screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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

std::string WithoutBlanks(const std::vector<BoxLine>& lines) {
    std::string all;
    for (const BoxLine& line : lines)
        all += WithoutBlanks(line.text);
    return all;
}

// Words, blanks, line ends, wide and combining characters, and any bytes.
std::string RandomText(std::mt19937& random) {
    static constexpr std::string_view kPieces[] = {
        "word", "a",  " ",        "  ",           "\n",           "\r\n",       "\t",
        "\r",   "\b", "\x1b[2J",  "\xE4\xB8\xAD", "e\xCC\x81",    "\xCC\x81",   "\xC2\x9B",
        "\xFF", "\0", "\xE2\x82", "\xE2\x80\xAE", "\xEF\xB8\x8F", "caf\xC3\xA9"};
    std::string text;
    for (auto pieces = random() % 40; pieces > 0; --pieces)
        text += kPieces[random() % std::size(kPieces)];
    // None that begins a character: terminals disagree on the width of rare ones.
    for (auto bytes = random() % 8; bytes > 0; --bytes)
        text += static_cast<char>(random() % 2 == 0 ? random() % 0xC0 : 0xF5 + random() % 11);
    return text;
}

void ExpectInWindow(const std::vector<BoxRow>& drawn, int columns, int rows) {
    std::vector<bool> used(static_cast<std::size_t>(rows));
    for (const BoxRow& row : drawn) {
        ASSERT_TRUE(row.row >= 0 && row.row < rows && row.column >= 0);
        ASSERT_FALSE(used[static_cast<std::size_t>(row.row)]);
        used[static_cast<std::size_t>(row.row)] = true;
        ASSERT_LE(row.column + LinesOf(row.text)[0].columns, columns);
        ASSERT_LE(row.text.size(), CBoxLayout::kMostRowBytes);
    }
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

// A terminal agrees on the columns, sees no control function, and nothing of the text is lost.
TEST(BoxText, AnyBytesBecomePlainLinesThatFit) {
    std::mt19937 random(11);
    for (int round = 0; round < 2000; ++round) {
        const std::string text = RandomText(random);
        const int columns = 2 + static_cast<int>(random() % 30);
        const std::vector<BoxLine> lines = WrapText(text, columns);
        EXPECT_EQ(WithoutBlanks(lines), WithoutBlanks(LinesOf(text)));
        for (const BoxLine& line : lines) {
            CScreen screen(2, 80);
            screen.Feed(line.text);
            ASSERT_LE(line.columns, columns);
            ASSERT_EQ(screen.GetCursor().col, line.columns) << line.text;
            ASSERT_EQ(screen.GetCursor().row, 0);
            ASSERT_TRUE(screen.GetOddities().empty() && screen.GetReplies().empty());
            ASSERT_TRUE(std::ranges::none_of(
                line.text, [](char byte) { return (byte >= 0 && byte < 0x20) || byte == 0x7F; }));
        }
    }
    std::string marks = "e";
    for (int count = 0; count < 1000; ++count)
        marks += "\xCC\x81";
    for (const BoxLine& line : WrapText(marks, 10))
        EXPECT_LE(line.text.size(), kMostBoxLineBytes);
}

// In a window of any size everything can be read, nothing is drawn outside of it or over something
// else, and the cursor is on the button.
TEST(BoxLayout, EverythingIsReadableInEveryWindow) {
    std::string lines;
    for (int line = 0; line < 40; ++line)
        lines += "line" + std::to_string(line) + "\n";
    const BoxContent contents[] = {
        {"Error", "It does not work.", '!'},
        {"A caption that needs more than one row", "", 'i'},
        {"", "\xE4\xB8\xAD\xE6\x96\x87 caf\xC3\xA9 " + std::string(100, 'x'), 0},
        {"Long", lines, '!'},
    };
    for (const BoxContent& content : contents) {
        for (int size = 0; size < 20 * 16; ++size) {
            const int columns = size % 20 + (size % 20 < 14 ? 2 : 62); // one is not enough for all
            const int rows = size / 20 + (size / 20 < 14 ? 1 : 10);
            const CBoxLayout layout(content, columns, rows);
            std::string bars;
            std::string read;
            for (int top = 0; top <= layout.LastTop(); ++top) {
                const std::vector<BoxRow> drawn = layout.Rows(top);
                ExpectInWindow(drawn, columns, rows);
                bool isNew = true; // of a page but the last, the first line
                for (const BoxRow& row : drawn) {
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
            ASSERT_NE(all.find(WithoutBlanks(content.caption)), std::string::npos) << all;
            ASSERT_TRUE(content.sign == 0 || all.find(content.sign) != std::string::npos);
            ASSERT_NE(all.find(WithoutBlanks(LinesOf(content.text))), std::string::npos)
                << columns << "x" << rows << ": " << all;
        }
    }
}
