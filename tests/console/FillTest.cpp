// Colours, fills and another size.
#include "tests/console/ShownConsole.h"

using namespace platform;

namespace {

// The terminal counts red 1, green 2, blue 4.
int TerminalColour(int colour) {
    return (colour & 8) | (colour & 1) << 2 | (colour & 2) | (colour & 4) >> 2;
}

} // namespace

TEST(ConsoleColours, EveryAttributeArrives) {
    CShownConsole console(20, 3);
    for (int step = 0; step < 1024; ++step) {
        const int attribute = step * 37 & 0x3FF; // from one to a quite different one
        console.output.SetPosition({3, 1});
        console.output.SetAttribute(static_cast<WORD>(attribute));
        if (console.output.EnterAlternate()) // brings back what was there
            console.output.Alternate().Leave();
        console.Write("x");
        console.Show();
        const VTermScreenCell cell = console.GetScreen().GetCell(1, 3);
        const bool ownForeground = (attribute & 0x107) == 0x07;
        const bool ownBackground = (attribute & 0x2F0) == 0;
        const int foreground = TerminalColour(attribute & 15);
        EXPECT_EQ(IndexOf(cell.fg), ownForeground ? -1 : foreground) << attribute;
        EXPECT_EQ(cell.attrs.bold, ownForeground && foreground == 15) << attribute;
        EXPECT_EQ(IndexOf(cell.bg), ownBackground ? -1 : TerminalColour(attribute >> 4 & 15))
            << attribute;
    }
}

TEST(ConsoleFill, FillsCellsAndLeavesTheCursor) {
    CShownConsole console(10, 4);
    console.Write("0123456789abcdefghij0123456789abcde");
    ASSERT_TRUE(console.Fill(5, 3, 4, 0x07));          // at the cursor
    ASSERT_TRUE(console.Fill(2, 0, 3, 0x07));          // inside of a row
    ASSERT_TRUE(console.Fill(8, 1, 5, 0x17));          // over a row's end
    ASSERT_TRUE(console.Fill(9, 3, 90, 0x2A, '\xDB')); // to the window's end
    console.Write("X");
    console.Show();
    EXPECT_EQ(console.Row(0), "01   56789");
    EXPECT_EQ(console.Row(1), "abcdefgh");
    EXPECT_EQ(console.Row(2), "   3456789");
    EXPECT_EQ(console.Row(3), "abcdeX   \xE2\x96\x88");
    EXPECT_EQ(IndexOf(console.GetScreen().GetCell(0, 2).bg), -1);
    EXPECT_EQ(IndexOf(console.GetScreen().GetCell(1, 9).bg), 4);
    EXPECT_EQ(IndexOf(console.GetScreen().GetCell(2, 2).bg), 4);
    EXPECT_EQ(IndexOf(console.GetScreen().GetCell(2, 3).bg), -1);
    EXPECT_EQ(console.GetScreen().GetScrollback().size(), 4U); // those of the first clearing only
}

TEST(ConsoleSize, AChangeIsFollowed) {
    CShownConsole console(20, 5);
    console.Write("1\n2\n3\n4\n12345678901234567890");
    console.Show();
    console.Resize(5, 30);
    EXPECT_TRUE(console.output.FollowSize());
    EXPECT_FALSE(console.output.FollowSize());
    console.Write("+"); // behind the text that had filled the row
    console.Show();
    EXPECT_EQ(console.Row(4), "12345678901234567890+");

    console.Resize(3, 10);
    EXPECT_TRUE(console.output.FollowSize());
    EXPECT_EQ(console.GetCursor().X, 9);
    EXPECT_EQ(console.GetCursor().Y, 2);
    console.Show();
    EXPECT_EQ(console.GetScreen().GetCursor().col, 9);
}
