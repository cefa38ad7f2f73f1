// Colours, fills, the scrollback and how the terminal is left.
#include "tests/console/Terminal.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

int IndexOf(const VTermColor& colour) {
    if (VTERM_COLOR_IS_DEFAULT_FG(&colour) || VTERM_COLOR_IS_DEFAULT_BG(&colour))
        return -1;
    return VTERM_COLOR_IS_INDEXED(&colour) ? colour.indexed.idx : -2;
}

// The terminal counts red 1, green 2, blue 4.
int TerminalColour(int colour) {
    return (colour & 8) | (colour & 1) << 2 | (colour & 2) | (colour & 4) >> 2;
}

} // namespace

TEST(ConsoleColours, EveryAttributeArrives) {
    Console console(20, 3);
    console.Clear();
    for (int step = 0; step < 512; ++step) {
        const int attribute = step * 37 & 0xFF; // from one to a quite different one
        console.output.SetPosition({3, 1});
        console.output.SetAttribute(static_cast<std::uint8_t>(attribute));
        Write(console.output, "x");
        console.Show();
        const VTermScreenCell cell = console.terminal.Cell(3, 1);
        const bool own = attribute == 0x07;
        EXPECT_EQ(IndexOf(cell.fg), own ? -1 : TerminalColour(attribute & 15)) << attribute;
        EXPECT_EQ(IndexOf(cell.bg), own ? -1 : TerminalColour(attribute >> 4)) << attribute;
    }
}

TEST(ConsoleColours, OnlyWhatIsDrawnIsColoured) {
    Console console(20, 3);
    console.Clear();
    console.output.SetAttribute(0x1E);
    console.output.SetAttribute(0x07);
    Write(console.output, "a");
    console.output.SetAttribute(0x4F);
    console.output.SetAttribute(0x07);
    Write(console.output, "b");
    console.Show();
    EXPECT_EQ(console.terminal.Raw(), "ab");

    // A row that scrolls in after a coloured one has the colours of now.
    console.output.SetAttribute(0x4F);
    Write(console.output, "\n\nred");
    console.output.SetAttribute(0x07);
    Write(console.output, "\n");
    console.Show();
    EXPECT_EQ(IndexOf(console.terminal.Cell(10, 2).bg), -1);
    EXPECT_EQ(IndexOf(console.terminal.Cell(0, 1).bg), 1);
}

TEST(ConsoleFill, FillsCellsAndLeavesTheCursor) {
    Console console(10, 4);
    console.Clear();
    Write(console.output, "0123456789abcdefghij0123456789abcde");
    ASSERT_TRUE(FillCells(console.output, 5, 3, 4, 0x07));          // at the cursor
    ASSERT_TRUE(FillCells(console.output, 2, 0, 3, 0x07));          // inside of a row
    ASSERT_TRUE(FillCells(console.output, 8, 1, 5, 0x17));          // over a row's end
    ASSERT_TRUE(FillCells(console.output, 9, 3, 90, 0x2A, '\xDB')); // to the window's end
    Write(console.output, "X");
    console.Show();
    EXPECT_EQ(console.terminal.Row(0), "01   56789");
    EXPECT_EQ(console.terminal.Row(1), "abcdefgh");
    EXPECT_EQ(console.terminal.Row(2), "   3456789");
    EXPECT_EQ(console.terminal.Row(3), "abcdeX   \xE2\x96\x88");
    EXPECT_EQ(IndexOf(console.terminal.Cell(2, 0).bg), -1);
    EXPECT_EQ(IndexOf(console.terminal.Cell(9, 1).bg), 4);
    EXPECT_EQ(IndexOf(console.terminal.Cell(2, 2).bg), 4);
    EXPECT_EQ(IndexOf(console.terminal.Cell(3, 2).bg), -1);
    EXPECT_EQ(console.terminal.Scrollback().size(), 4U); // those of the first clearing only
}

TEST(ConsoleFill, APendingWrapSurvivesAFillElsewhere) {
    Console console(10, 4);
    console.Clear();
    Write(console.output, "0123456789");
    ASSERT_TRUE(FillCells(console.output, 0, 2, 10, 0x07));
    console.Show();
    EXPECT_EQ(console.terminal.CursorColumn(), 9);
    Write(console.output, "X");
    console.Show();
    EXPECT_EQ(console.terminal.Row(0), "0123456789");
    EXPECT_EQ(console.terminal.Row(1), "X");
}

TEST(ConsoleFill, TheAttributeBelongsToTheCellsJustFilled) {
    Console console(10, 4);
    console.Clear();
    EXPECT_FALSE(console.output.ColourFill(0x17, 5, {0, 0}));
    EXPECT_EQ(console.output.Fill('x', 5, {0, 0}), 5);
    EXPECT_FALSE(console.output.ColourFill(0x17, 4, {0, 0}));
    EXPECT_EQ(console.output.Fill('y', 100, {8, 3}), 2);
    EXPECT_EQ(console.output.Fill('z', 1, {10, 0}), -1);
    EXPECT_EQ(console.output.Fill('z', 1, {0, -1}), -1);
    EXPECT_FALSE(console.output.SetPosition({10, 0}));
    EXPECT_FALSE(console.output.SetPosition({0, 4}));
    EXPECT_FALSE(console.output.SetPosition({-1, 0}));
    console.Show(); // without an attribute of their own they have the current one
    EXPECT_EQ(console.terminal.Row(0), "xxxxx");
    EXPECT_EQ(console.terminal.Row(3), "        yy");
}

TEST(ConsoleFill, TheFirstClearingKeepsTheScreenInTheScrollback) {
    for (const std::uint8_t attribute : {std::uint8_t{0x07}, std::uint8_t{0x1E}}) {
        Console console(10, 3);
        ASSERT_EQ(write(console.terminal.Slave(), "$ one\r\ntwo", 10), 10);
        console.terminal.Catch();
        ASSERT_TRUE(FillCells(console.output, 0, 0, 30, attribute));
        console.output.SetPosition({0, 0});
        console.Show();
        EXPECT_EQ(console.terminal.Scrollback(), (std::vector<std::string>{"$ one", "two", ""}));
        EXPECT_EQ(IndexOf(console.terminal.Cell(9, 2).bg), attribute == 0x07 ? -1 : 4);

        Write(console.output, "three");
        ASSERT_TRUE(FillCells(console.output, 0, 0, 30, attribute));
        console.Show();
        EXPECT_EQ(console.terminal.Row(0), "");
        EXPECT_EQ(console.terminal.Scrollback().size(), 3U);
        EXPECT_EQ(console.terminal.CursorColumn(), 5);
    }
}

TEST(ConsoleEnd, TheCursorGoesBelowTheText) {
    struct Case {
        std::string_view written;
        COORD position;
        int row;
    };
    const Case cases[] = {
        {"a\r\nb", {0, 0}, 2},     // from above
        {"a\r\nb\r\n", {0, 2}, 2}, // already there
        {"a", {3, 3}, 1},          // from below
        {"", {0, 0}, 0},           //
        {"a\nb\nc\nd", {1, 3}, 3}, // in the bottom row: scrolls
        {"a\nb\nc\nd\n", {0, 3}, 3},
    };
    for (const Case& end : cases) {
        Console console(10, 4);
        console.Clear();
        console.output.SetAttribute(0x1E);
        Write(console.output, end.written);
        console.output.SetPosition(end.position);
        console.output.End();
        console.terminal.Catch();
        EXPECT_EQ(console.terminal.CursorColumn(), 0) << end.written;
        EXPECT_EQ(console.terminal.CursorRow(), end.row) << end.written;
        EXPECT_EQ(console.terminal.Row(end.row), "") << end.written;
    }
}

TEST(ConsoleEnd, WithoutAClearingTheShellsTextStays) {
    Console console(10, 4);
    ASSERT_EQ(write(console.terminal.Slave(), "$ run\r\n", 7), 7);
    Write(console.output, "AT\r\nOK");
    console.output.End();
    console.terminal.Catch();
    ASSERT_EQ(write(console.terminal.Slave(), "$", 1), 1);
    console.terminal.Catch();
    EXPECT_EQ(console.terminal.Row(0), "$ run");
    EXPECT_EQ(console.terminal.Row(1), "AT");
    EXPECT_EQ(console.terminal.Row(2), "OK");
    EXPECT_EQ(console.terminal.Row(3), "$");
}

TEST(ConsoleSize, AChangeIsFollowed) {
    Console console(20, 5);
    console.Clear();
    Write(console.output, "1\n2\n3\n4\n12345678901234567890");
    console.Show();
    console.terminal.Resize(30, 5);
    console.output.NoteSizeChange();
    EXPECT_EQ(CursorOf(console.output).X, 20); // behind the text that had filled the row
    EXPECT_TRUE(console.output.TakeSizeChange());
    EXPECT_FALSE(console.output.TakeSizeChange());
    Write(console.output, "+");
    console.Show();
    EXPECT_EQ(console.terminal.Row(4), "12345678901234567890+");

    console.terminal.Resize(10, 3);
    console.output.NoteSizeChange();
    EXPECT_TRUE(console.output.TakeSizeChange());
    EXPECT_EQ(CursorOf(console.output).X, 9);
    EXPECT_EQ(CursorOf(console.output).Y, 2);
    EXPECT_FALSE(console.output.SetPosition({10, 2}));
    console.Show();
    EXPECT_EQ(console.terminal.CursorColumn(), 9);
}
