// The cursor as the console has it against the cursor that a terminal has, over random output.
#include "tests/console/ShownConsole.h"

#include <random>

namespace {

constexpr std::string_view kPieces[] = {
    "a",    "\r",      "\n",       "\r\n", "\b",     "\t",          "\x1b",   "\x01",      "\u00E9",
    "\xFF", "e\u0301", "\xE2\x82", "\b\b", "\u2500", "hello world", "\u4E2D", "\U0001F600"};

// Over the text; it is there again afterwards.
void ShowBox(platform::CConsoleOutput& output) {
    EXPECT_TRUE(output.EnterAlternate() && output.Alternate().Clear() &&
                output.Alternate().Draw(0, 1, "box", true));
    output.Alternate().Leave();
}

// The same on every console that is given the same numbers.
void Step(CShownConsole& console, COORD size, std::mt19937 random) {
    const auto below = [&](auto limit) {
        return static_cast<int>(random() >> 1) % static_cast<int>(limit);
    };
    const int choice = below(24);
    const COORD place = {static_cast<SHORT>(below(size.X)), static_cast<SHORT>(below(size.Y))};
    const auto colour = static_cast<std::uint8_t>(below(3) == 0 ? 0x1E : 0x07);
    const COORD at = below(2) == 0 ? console.GetCursor() : place;
    if (choice < 17)
        console.Write(kPieces[below(std::size(kPieces))]);
    else if (choice < 18)
        console.Write(std::string(static_cast<std::size_t>(below(2 * size.X)), 'm'));
    else if (choice < 20)
        console.output.SetPosition(place);
    else if (choice < 21)
        console.output.SetAttribute(static_cast<WORD>(below(3) == 0 ? 0x07 : below(256)));
    else if (choice < 22)
        ShowBox(console.output);
    else if (below(8) == 0)
        console.Fill(0, 0, size.X * size.Y, colour);
    else
        console.Fill(at.X, at.Y, below(size.X + 3), colour, below(2) == 0 ? '#' : ' ');
}

constexpr COORD kSizes[] = {{20, 6}, {7, 3}, {3, 2}, {33, 1}, {80, 25}};

} // namespace

// It is, and when output leaves does not change what is seen.
TEST(ConsoleModel, TheCursorIsWhereTheTerminalHasIt) {
    for (const COORD size : kSizes) {
        CShownConsole whole(size.X, size.Y);
        CShownConsole pieces(size.X, size.Y);
        std::mt19937 random(11);
        for (int step = 0; step < 20'000; ++step) {
            Step(whole, size, random);
            Step(pieces, size, random);
            random.discard(10);
            if (step % 100 == 0)
                whole.Show();
            if (random() % 4 != 0)
                continue;
            pieces.Show();
            const COORD cursor = pieces.GetCursor();
            const VTermPos seen = pieces.GetScreen().GetCursor();
            // libvterm leaves the cursor on a wide character in the last two columns.
            const bool onWide = cursor.X == size.X - 1 && seen.col == cursor.X - 1 &&
                                pieces.GetScreen().GetCell(cursor.Y, seen.col).width == 2;
            ASSERT_EQ(onWide ? cursor.X : seen.col, cursor.X) << size.X << " columns, " << step;
            ASSERT_EQ(seen.row, cursor.Y) << size.X << " columns, step " << step;
        }
        whole.Show();
        pieces.Show();
        EXPECT_EQ(whole.GetScreen().GetScrollback(), pieces.GetScreen().GetScrollback());
        EXPECT_EQ(whole.GetScreen().GetText(), pieces.GetScreen().GetText()) << size.X;
    }
}
