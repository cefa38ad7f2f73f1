// Colours, fills, another size and how the terminal is left.
#include "tests/console/Terminal.h"

using namespace platform;

namespace {

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

TEST(ConsoleEnd, TheCursorGoesBelowTheText) {
    const struct {
        std::string_view written;
        COORD position;
        int row;
    } cases[] = {
        {"a\r\nb", {0, 0}, 2},     // from above
        {"a\r\nb\r\n", {0, 2}, 2}, // already there
        {"a", {3, 3}, 1},          // from below
        {"", {0, 0}, 0},           //
        {"a\nb\nc\nd", {1, 3}, 3}, // in the bottom row: scrolls
        {"a\nb\nc\nd\n", {0, 3}, 3},
    };
    for (const auto& end : cases) {
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

TEST(ConsoleSize, AChangeIsFollowed) {
    Console console(20, 5);
    console.Clear();
    Write(console.output, "1\n2\n3\n4\n12345678901234567890");
    console.Show();
    console.terminal.Resize(30, 5);
    console.output.NoteSizeChange();
    EXPECT_TRUE(console.output.TakeSizeChange());
    EXPECT_FALSE(console.output.TakeSizeChange());
    Write(console.output, "+"); // behind the text that had filled the row
    console.Show();
    EXPECT_EQ(console.terminal.Row(4), "12345678901234567890+");

    console.terminal.Resize(10, 3);
    console.output.NoteSizeChange();
    EXPECT_EQ(CursorOf(console.output).X, 9);
    EXPECT_EQ(CursorOf(console.output).Y, 2);
    console.Show();
    EXPECT_EQ(console.terminal.CursorColumn(), 9);
}
