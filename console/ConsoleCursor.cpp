// While nothing is special, one position is both ours and the terminal's. Leave divides them: from
// then on ours moves alone, and m_terminal is the terminal's, until Sync or Settle finds both in
// one place again. A pending wrap belongs to the position: the terminal may know of it, or not
// (kHand), when it has been elsewhere; then the line end is sent by hand.
#include "console/ConsoleCursor.h"

#include <algorithm>
#include <limits>

namespace platform {

// Most often a shell's user works in the bottom row. The guess matters little: until the window is
// cleared or a position is set, everything is relative to it.
void CConsoleCursor::Begin(COORD size) {
    m_nColumns = size.X;
    m_nRows = size.Y;
    m_nColumn = 0;
    m_nRow = m_nRows - 1;
    m_nLowest = m_nRow - 1;
    m_bSure = false;
    m_nState = kFresh;
}

void CConsoleCursor::BeginPlain() {
    m_nColumns = std::numeric_limits<int>::max();
    m_nColumn = 0;
    m_nState = 0;
}

void CConsoleCursor::Resize(COORD size) {
    const int columns = size.X;
    const int rows = size.Y;
    Leave();
    if ((m_nState & kWrap) != 0 && columns > m_nColumns) {
        m_nState &= ~static_cast<unsigned>(kWrap | kHand);
        m_nColumn = m_nColumns;
    } else if ((m_nState & kWrap) != 0) {
        m_nColumn = columns - 1;
    }
    m_nColumn = std::min(m_nColumn, columns - 1);
    const int lost = std::max(0, m_nRow - (rows - 1)); // the terminal drops rows at the top
    m_nRow -= lost;
    m_nLowest = std::clamp(m_nLowest - lost, -1, rows - 1);
    m_terminal = {kUnknown, m_terminal.row - lost, false};
    m_nColumns = columns;
    m_nRows = rows;
    NoteRow();
}

void CConsoleCursor::Forget() {
    Leave();
    m_terminal = {kUnknown, m_terminal.row, false};
}

void CConsoleCursor::NoteReturn() {
    if ((m_nState & kWrap) == 0)
        return;
    if ((m_nState & kMoved) != 0)
        m_terminal.wraps = false;
    else
        m_nState |= kHand;
}

// The model and the terminal part: from here on m_terminal tells where the terminal's cursor is.
void CConsoleCursor::Leave() {
    if ((m_nState & kMoved) != 0)
        return;
    m_terminal = {m_nColumn, m_nRow, (m_nState & (kWrap | kHand)) == kWrap};
    m_nState |= kMoved;
}

void CConsoleCursor::Settle() {
    if ((m_nState & kMoved) == 0 || m_terminal.column != m_nColumn || m_terminal.row != m_nRow)
        return;
    if ((m_nState & kWrap) == 0 && m_terminal.wraps)
        return;
    m_nState &= ~static_cast<unsigned>(kMoved | kHand);
    if ((m_nState & kWrap) != 0 && !m_terminal.wraps)
        m_nState |= kHand;
}

void CConsoleCursor::Sync() {
    Settle();
    if ((m_nState & kMoved) == 0)
        return;
    MoveTerminal(m_nColumn, m_nRow);
    Settle();
}

void CConsoleCursor::MoveTerminal(int column, int row) {
    Leave();
    const bool sameRow = m_terminal.row == row;
    if (sameRow && m_terminal.column == column && !m_terminal.wraps)
        return;
    // Some terminals end a pending wrap only when the cursor really moves.
    if (sameRow && m_terminal.wraps && column != 0)
        m_gather.Put('\r');
    if (sameRow && column == 0)
        m_gather.Put('\r');
    else if (sameRow)
        m_gather.PutSequence(column + 1, 'G');
    else if (column == 0 && row == 0)
        m_gather.Put("\x1b[H");
    else
        m_gather.PutSequence(row + 1, column + 1, 'H');
    m_terminal = {column, row, false};
}

void CConsoleCursor::TerminalDrew(int columns) {
    m_terminal.column += columns;
    if (m_terminal.column >= m_nColumns)
        m_terminal = {m_nColumns - 1, m_terminal.row, true};
}

void CConsoleCursor::TerminalIsAt(int column, int row) {
    Leave();
    m_terminal = {column, row, false};
}

void CConsoleCursor::BeforeCharacter(int width) {
    Sync();
    if ((m_nState & kHand) != 0)
        m_gather.Put("\r\n");
    // A wide character that does not fit wraps without having been pending; the terminal does it.
    if ((m_nState & kWrap) != 0 || (m_nColumn + width > m_nColumns && m_nColumn > 0)) {
        m_nState &= ~static_cast<unsigned>(kWrap | kHand);
        m_nColumn = 0;
        NextRow();
    }
    if ((m_nState & kFresh) != 0)
        NoteReached(m_nRow);
}

void CConsoleCursor::AfterCharacter(int width) {
    m_nColumn += width;
    if (m_nColumn < m_nColumns)
        return;
    m_nColumn = m_nColumns - 1;
    m_nState |= kWrap;
}

void CConsoleCursor::CarriageReturn() {
    m_nState &= ~static_cast<unsigned>(kWrap | kHand);
    m_nColumn = 0;
    if ((m_nState & kMoved) != 0 && m_terminal.row != m_nRow)
        return;
    m_nState &= ~static_cast<unsigned>(kMoved);
    m_bSure = true;
    m_gather.Put('\r');
}

void CConsoleCursor::LineFeed() {
    Sync();
    if (m_nColumn != 0 || !m_bSure)
        m_gather.Put('\r');
    m_gather.Put('\n');
    m_bSure = true;
    m_nState &= ~static_cast<unsigned>(kWrap | kHand);
    m_nColumn = 0;
    NextRow();
}

// Terminals disagree on a backspace while a wrap is pending, so the column is sent then.
void CConsoleCursor::Backspace() {
    if ((m_nState & (kWrap | kMoved)) != 0) {
        Place(std::max(m_nColumn - 1, 0), m_nRow);
        return;
    }
    if (m_nColumn == 0)
        return;
    --m_nColumn;
    m_gather.Put('\b');
}

void CConsoleCursor::Place(int column, int row) {
    Leave();
    m_nColumn = column;
    m_nRow = row;
    m_nState &= ~static_cast<unsigned>(kWrap | kHand);
    NoteRow();
    Settle();
}

void CConsoleCursor::NextRow() {
    if (m_nRow < m_nRows - 1)
        ++m_nRow;
    else
        m_nLowest = std::max(m_nLowest - 1, -1);
    NoteRow();
}

void CConsoleCursor::NoteRow() {
    m_nState = m_nRow > m_nLowest ? m_nState | kFresh : m_nState & ~static_cast<unsigned>(kFresh);
}

void CConsoleCursor::NoteCleared() {
    m_nLowest = -1;
    NoteRow();
}

void CConsoleCursor::NoteReached(int row) {
    m_nLowest = std::max(m_nLowest, row);
    NoteRow();
}

void CConsoleCursor::GoBelow() {
    Sync();
    const int below = m_nLowest + 1;
    if (below > m_nRow) {
        if (below - m_nRow > 1)
            m_gather.PutSequence(below - m_nRow - 1, 'B');
        m_gather.Put("\r\n");
    } else {
        if (below < m_nRow)
            m_gather.PutSequence(m_nRow - below, 'A');
        if (m_nColumn != 0 || (m_nState & kWrap) != 0)
            m_gather.Put('\r');
    }
    m_nRow = std::min(below, m_nRows - 1);
    m_nLowest = std::min(m_nLowest, m_nRow - 1);
    m_nColumn = 0;
    m_nState = kFresh;
}

} // namespace platform
