// A run of cells to be filled: remembered when its character is given, drawn once its attribute is
// known. Used by the thread that has taken the console over.
#pragma once

#include "console/ConsoleColours.h"
#include "console/ConsoleCursor.h"

namespace platform {

class CConsoleFill {
  public:
    CConsoleFill(CConsoleGather& gather, CConsoleCursor& cursor, CConsoleColours& colours)
        : m_gather(gather), m_cursor(cursor), m_colours(colours) {}

    // The console was taken over: the next fill of the whole window must not lose what it shows.
    void KeepScreenOnce() { m_bKeepScreen = true; }

    // Cells are numbered from 0 at the top left, row by row; the run lies inside of the window.
    void Remember(int first, int count, std::uint8_t byte);
    bool IsPending() const { return m_nCount != 0; }
    bool IsPending(int first, int count) const {
        return IsPending() && first == m_nFirst && count == m_nCount;
    }

    // Draws the remembered run with an attribute; it is remembered no longer. Ends early when
    // output is gone or the console is given back meanwhile; the cursor model holds all the same.
    void Draw(WORD attribute);
    // The same, if there is one, with the attribute of text.
    void End() {
        if (IsPending())
            Draw(m_colours.Wanted());
    }
    void Forget() { m_nCount = 0; }

  private:
    bool KeepScreen();
    bool Erase(int first, int end);
    bool DrawCells(int first, int end);
    bool DrawRow(int row, int column, int endColumn);

    CConsoleGather& m_gather;
    CConsoleCursor& m_cursor;
    CConsoleColours& m_colours;
    int m_nFirst = 0;
    int m_nCount = 0; // 0: nothing is remembered
    std::uint8_t m_byte = 0;
    bool m_bKeepScreen = false;
};

} // namespace platform
