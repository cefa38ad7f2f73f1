// The cursor: where it stands for the program, and where the terminal has it, without ever asking
// the terminal. The terminal is moved only when something is drawn or when it is left alone for a
// while.
//
// At the right edge the cursor stays in the last column and wraps before the next character, as on
// xterm and its relatives. When only the column has to change, only the column is sent: the
// terminal may have moved its rows on a change of its size. Used by the thread that has taken the
// console over; the callers see to the room in the buffer.
#pragma once

#include "console/Console.h"
#include "console/ConsoleGather.h"

namespace platform {

class CConsoleCursor {
  public:
    explicit CConsoleCursor(CConsoleGather& gather) : m_gather(gather) {}

    // A terminal of this size, its cursor in the first column of an unknown row.
    void Begin(COORD size);
    // No terminal: columns without end, rows without meaning.
    void BeginPlain();
    // The terminal has another size now.
    void Resize(COORD size);
    // Somebody else may have moved the terminal's cursor.
    void Forget();
    // The terminal has been elsewhere and is back where it was; not all of them bring a pending
    // wrap back.
    void NoteReturn();

    int Column() const { return m_nColumn; }
    int Row() const { return m_nRow; }
    int Columns() const { return m_nColumns; }
    int Rows() const { return m_nRows; }

    // How many characters of one column, from here on, need no more than Advance.
    int RunColumns() const { return m_nState == 0 ? m_nColumns - 1 - m_nColumn : 0; }
    void Advance(int columns) { m_nColumn += columns; }

    // Around a character of 1 or 2 columns.
    void BeforeCharacter(int width);
    void AfterCharacter(int width);
    // Before a character without a width.
    void Sync();
    bool NeedsSync() const { return (m_nState & kMoved) != 0; }

    void CarriageReturn();
    void LineFeed();
    void Backspace();
    // Column and row inside of the window.
    void Place(int column, int row);

    // For drawing elsewhere: the terminal's cursor alone moves and has drawn some columns of a row;
    // at the end it is settled whether it still has to go back.
    void MoveTerminal(int column, int row);
    void TerminalDrew(int columns);
    void TerminalIsAt(int column, int row);
    void Settle();

    // The whole window is blank; text has reached this row.
    void NoteCleared();
    void NoteReached(int row);
    // Moves to the first column of the row below the lowest text.
    void GoBelow();

  private:
    enum State : unsigned {
        kWrap = 1,  // in the last column, wraps before the next character
        kHand = 2,  // with kWrap: the terminal does not know and will not wrap by itself
        kMoved = 4, // the terminal's cursor is at m_terminal
        kFresh = 8, // no text has reached this row yet
    };
    static constexpr int kUnknown = -1;

    struct Spot {
        int column;
        int row;
        bool wraps;
    };

    void Leave();
    void NextRow();
    void NoteRow();

    CConsoleGather& m_gather;
    unsigned m_nState = 0;
    int m_nColumn = 0;
    int m_nColumns = 80;
    int m_nRow = 0;
    int m_nRows = 25;
    int m_nLowest = -1;  // the lowest row with text; -1: none
    bool m_bSure = true; // the column is known, not assumed
    Spot m_terminal = {0, 0, false};
};

} // namespace platform
