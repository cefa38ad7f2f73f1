// The cursor as the console has it against the cursor that a terminal has, over random output.
#include "tests/console/ShownConsole.h"

#include <random>

namespace {

constexpr std::string_view kPieces[] = {
    "a",    "\r",      "\n",       "\r\n", "\b",     "\t",          "\x1b",   "\x01",      "\u00E9",
    "\xFF", "e\u0301", "\xE2\x82", "\b\b", "\u2500", "hello world", "\u4E2D", "\U0001F600"};
constexpr int kWide = 2; // the last two

// Over the text; it is there again afterwards.
void ShowBox(platform::CConsoleOutput& output) {
    EXPECT_TRUE(output.EnterAlternate() && output.Alternate().Clear() &&
                output.Alternate().Draw(0, 1, "box", true));
    output.Alternate().Leave();
}

class CRandomOutput {
  public:
    CRandomOutput(int columns, int rows, unsigned seed)
        : m_nColumns(columns), m_nRows(rows), m_random(seed) {}

    // Does the same on each console.
    void Step(std::initializer_list<CShownConsole*> consoles, bool wide) {
        const int choice = Below(24);
        const int pieces = static_cast<int>(std::size(kPieces)) - (wide ? 0 : kWide);
        const std::string text(static_cast<std::size_t>(Below(2 * m_nColumns)), 'm');
        const COORD place = {static_cast<SHORT>(Below(m_nColumns)),
                             static_cast<SHORT>(Below(m_nRows))};
        const auto colour = static_cast<std::uint8_t>(Below(3) == 0 ? 0x07 : Below(256));
        const int fill = Below(16);
        const int cells = Below(m_nColumns + 3);
        for (CShownConsole* const console : consoles) {
            const COORD at = fill % 2 == 0 ? console->GetCursor() : place;
            const std::uint8_t fillColour = fill % 3 == 0 ? 0x1E : 0x07;
            if (choice < 17)
                console->Write(kPieces[choice % pieces]);
            else if (choice < 18)
                console->Write(text);
            else if (choice < 20)
                console->output.SetPosition(place);
            else if (choice < 21)
                console->output.SetAttribute(colour);
            else if (choice < 22)
                ShowBox(console->output);
            else if (fill < 2)
                console->Fill(0, 0, m_nColumns * m_nRows, fillColour);
            else
                console->Fill(at.X, at.Y, cells, fillColour, fill % 4 == 0 ? '#' : ' ');
        }
    }
    int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

  private:
    const int m_nColumns;
    const int m_nRows;
    std::mt19937 m_random;
};

constexpr COORD kSizes[] = {{20, 6}, {7, 3}, {3, 2}, {33, 1}, {80, 25}};

} // namespace

TEST(ConsoleModel, TheCursorIsWhereTheTerminalHasIt) {
    for (const COORD size : kSizes) {
        CShownConsole console(size.X, size.Y);
        CRandomOutput random(size.X, size.Y, static_cast<unsigned>(size.X));
        for (int step = 0; step < 30'000; ++step) {
            random.Step({&console}, true);
            if (random.Below(4) != 0)
                continue;
            console.Show();
            const COORD cursor = console.GetCursor();
            const VTermPos seen = console.GetScreen().GetCursor();
            // libvterm leaves the cursor on a wide character in the last two columns.
            const bool onWide = cursor.X == size.X - 1 && seen.col == cursor.X - 1 &&
                                console.GetScreen().GetCell(cursor.Y, seen.col).width == 2;
            ASSERT_EQ(onWide ? cursor.X : seen.col, cursor.X) << size.X << " columns, " << step;
            ASSERT_EQ(seen.row, cursor.Y) << size.X << " columns, step " << step;
        }
    }
}

// When output leaves must not change what is seen.
TEST(ConsoleModel, ItIsTheSameInOnePieceAndInMany) {
    for (const COORD size : kSizes) {
        CShownConsole whole(size.X, size.Y);
        CShownConsole pieces(size.X, size.Y);
        CRandomOutput random(size.X, size.Y, 11);
        for (int step = 0; step < 2'000; ++step) {
            random.Step({&whole, &pieces}, false);
            pieces.Show();
            if (step % 100 == 0)
                whole.Show();
        }
        whole.Show();
        EXPECT_EQ(whole.GetScreen().GetScrollback(), pieces.GetScreen().GetScrollback());
        EXPECT_EQ(whole.GetScreen().GetText(), pieces.GetScreen().GetText()) << size.X;
        EXPECT_EQ(whole.GetScreen().GetCursor().col, pieces.GetScreen().GetCursor().col);
    }
}
