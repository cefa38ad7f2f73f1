// The cursor as the console has it against the cursor that a terminal has, over random output.
#include "tests/console/ShownConsole.h"

#include <random>

using namespace platform;

namespace {

class CRandomOutput {
  public:
    CRandomOutput(CShownConsole& console, COORD size, unsigned seed, bool wide)
        : m_console(console), m_size(size), m_random(seed), m_bWide(wide) {
        console.Clear();
    }

    void Step() {
        static constexpr std::string_view kPieces[] = {
            "a",    "\r",        "\n",       "\r\n",     "\b",
            "\t",   "\x1b",      "\x01",     "\xC3\xA9", "\xE2\x94\x80",
            "\xFF", "e\xCC\x81", "\xE2\x82", "\b\b",     "hello world"};
        static constexpr std::string_view kWide[] = {"\xE4\xB8\xAD", "\xF0\x9F\x98\x80"};
        const int choice = Below(24);
        if (choice < 15)
            m_console.Write(kPieces[choice]);
        else if (choice < 17)
            m_console.Write(m_bWide ? kWide[choice - 15] : "x");
        else if (choice < 18)
            m_console.Write(std::string(static_cast<std::size_t>(Below(2 * m_size.X)), 'm'));
        else if (choice < 20)
            m_console.output.SetPosition(
                {static_cast<SHORT>(Below(m_size.X)), static_cast<SHORT>(Below(m_size.Y))});
        else if (choice < 22)
            m_console.output.SetAttribute(
                static_cast<std::uint8_t>(Below(3) == 0 ? 0x07 : Below(256)));
        else
            Fill();
    }

    int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

  private:
    void Fill() {
        static constexpr std::uint8_t kAttributes[] = {0x07, 0x07, 0x1E};
        const int cells = m_size.X * m_size.Y;
        const COORD cursor = m_console.GetCursor();
        const bool here = Below(2) == 0;
        const int column = here ? cursor.X : Below(m_size.X);
        const int row = here ? cursor.Y : Below(m_size.Y);
        if (Below(8) == 0)
            m_console.Fill(0, 0, cells, kAttributes[Below(3)]);
        else
            m_console.Fill(column, row, Below(m_size.X + 3), kAttributes[Below(3)],
                           Below(4) == 0 ? '#' : ' ');
    }

    CShownConsole& m_console;
    const COORD m_size;
    std::mt19937 m_random;
    const bool m_bWide;
};

constexpr COORD kSizes[] = {{20, 6}, {7, 3}, {3, 2}, {33, 1}, {80, 25}};

std::vector<std::string> Everything(const CShownConsole& console, int rows) {
    std::vector<std::string> text = console.screen.GetScrollback();
    for (int row = 0; row < rows; ++row)
        text.push_back(console.Row(row));
    return text;
}

} // namespace

TEST(ConsoleModel, TheCursorIsWhereTheTerminalHasIt) {
    constexpr int kSteps = 30'000;
    for (const COORD size : kSizes) {
        CShownConsole console(size.X, size.Y);
        CRandomOutput random(console, size, static_cast<unsigned>(size.X), true);
        for (int step = 0; step < kSteps; ++step) {
            random.Step();
            if (random.Below(4) != 0)
                continue;
            console.Show();
            const COORD cursor = console.GetCursor();
            const int column = console.screen.GetCursor().col;
            // libvterm leaves the cursor on a wide character in the last two columns.
            const bool onWide = cursor.X == size.X - 1 && column == cursor.X - 1 &&
                                console.screen.GetCell(cursor.Y, column).width == 2;
            ASSERT_EQ(onWide ? cursor.X : column, cursor.X) << size.X << " columns, step " << step;
            ASSERT_EQ(console.screen.GetCursor().row, cursor.Y)
                << size.X << " columns, step " << step;
        }
    }
}

// When output leaves must not change what is seen.
TEST(ConsoleModel, ItIsTheSameInOnePieceAndInMany) {
    constexpr int kSteps = 2'000;
    for (const COORD size : kSizes) {
        CShownConsole whole(size.X, size.Y);
        CShownConsole pieces(size.X, size.Y);
        CRandomOutput first(whole, size, 11, false);
        CRandomOutput second(pieces, size, 11, false);
        for (int step = 0; step < kSteps; ++step) {
            first.Step();
            second.Step();
            pieces.Show();
            if (step % 100 == 0)
                whole.Show();
        }
        whole.Show();
        EXPECT_EQ(Everything(whole, size.Y), Everything(pieces, size.Y)) << size.X << " columns";
        EXPECT_EQ(whole.screen.GetCursor().col, pieces.screen.GetCursor().col);
    }
}
