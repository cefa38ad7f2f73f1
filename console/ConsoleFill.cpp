// A fill of blanks in the terminal's own background is an erasure; any other is drawn cell by cell,
// a row at a time, without moving our cursor.
#include "console/ConsoleFill.h"

#include "console/ConsoleGlyphs.h"

#include <algorithm>
#include <utility>

namespace platform {

void CConsoleFill::Remember(int first, int count, std::uint8_t byte) {
    m_nFirst = first;
    m_nCount = count;
    m_byte = byte;
}

void CConsoleFill::Draw(WORD attribute) {
    const int cells = m_cursor.Columns() * m_cursor.Rows();
    const int first = m_nFirst;
    const int end = std::min(first + std::exchange(m_nCount, 0), cells);
    const bool whole = first == 0 && end == cells;
    const bool blank = m_byte == ' ' || m_byte == 0;
    if (first >= end || !m_gather.EnsureRoom() || (whole && m_bKeepScreen && !KeepScreen()))
        return;
    m_colours.Sync(attribute);
    const bool drawn = blank && CConsoleColours::HasOwnBackground(attribute)
                           ? Erase(first, end)
                           : DrawCells(first, end);
    if (!drawn)
        return;
    if (whole)
        m_cursor.NoteCleared();
    if (!blank)
        m_cursor.NoteReached((end - 1) / m_cursor.Columns());
    m_cursor.Settle();
}

// A line feed in the bottom row is the one way of every terminal into its scrollback.
bool CConsoleFill::KeepScreen() {
    m_bKeepScreen = false;
    m_colours.Sync(CConsoleColours::kDefault);
    m_gather.PutSequence(m_cursor.Rows(), 1, 'H');
    m_cursor.TerminalIsAt(0, m_cursor.Rows() - 1);
    for (int row = 0; row < m_cursor.Rows(); ++row) {
        if (!m_gather.EnsureRoom())
            return false;
        m_gather.Put('\n');
    }
    return true;
}

// Erasing the display whole (2J) makes some terminals push blank rows into their scrollback, so the
// rest of the display is erased from where the cursor is.
bool CConsoleFill::Erase(int first, int end) {
    const int columns = m_cursor.Columns();
    if (first == 0 && end == columns * m_cursor.Rows()) {
        m_gather.Put("\x1b[H\x1b[J");
        m_cursor.TerminalIsAt(0, 0);
        return true;
    }
    while (first < end) {
        if (!m_gather.EnsureRoom())
            return false;
        const int row = first / columns;
        const int column = first % columns;
        const int endColumn = std::min(columns, column + (end - first));
        m_cursor.MoveTerminal(column, row);
        if (endColumn == columns)
            m_gather.Put("\x1b[K");
        else
            m_gather.PutSequence(endColumn - column, 'X');
        first += endColumn - column;
    }
    return true;
}

bool CConsoleFill::DrawCells(int first, int end) {
    const int columns = m_cursor.Columns();
    if (first == 0 && end == columns * m_cursor.Rows()) {
        m_gather.Put("\x1b[H"); // also when the rows are not where they are thought to be
        m_cursor.TerminalIsAt(0, 0);
    }
    while (first < end) {
        const int row = first / columns;
        const int column = first % columns;
        const int endColumn = std::min(columns, column + (end - first));
        if (!DrawRow(row, column, endColumn))
            return false;
        first += endColumn - column;
    }
    return true;
}

bool CConsoleFill::DrawRow(int row, int column, int endColumn) {
    constexpr int kCellsAtOnce = 64; // at most 3 bytes each, in one unit of room
    const std::string_view picture = GlyphOf(m_byte).text;
    while (column < endColumn) {
        if (!m_gather.EnsureRoom())
            return false;
        const int cells = std::min(kCellsAtOnce, endColumn - column);
        m_cursor.MoveTerminal(column, row);
        for (int cell = 0; cell < cells; ++cell)
            m_gather.PutText(picture);
        m_cursor.TerminalDrew(cells);
        column += cells;
    }
    return true;
}

} // namespace platform
