// The console alone knows its cursor and its size; each operation asks for them and goes from
// there, and one that gets no answer does nothing.
#include "terminal/ConsoleScreen.h"

#include <algorithm>
#include <limits>

namespace {

// A coordinate that a cell can have, or one that the console refuses just the same.
SHORT ToCoordinate(std::int64_t value) {
    return static_cast<SHORT>(
        std::clamp<std::int64_t>(value, -1, std::numeric_limits<SHORT>::max()));
}

} // namespace

BOOL CConsoleScreen::Attach(CVModem* modem) {
    m_pModem = modem;
    const BOOL taken = Init();
    const SMALL_RECT window = {0, 0, ToCoordinate(m_nColumns - 1), ToCoordinate(m_nRows - 1)};
    SetConsoleWindowInfo(m_hOutput, TRUE, &window);
    return taken;
}

BOOL CConsoleScreen::ReadScreen(CONSOLE_SCREEN_BUFFER_INFO& info) {
    return m_bActive && GetConsoleScreenBufferInfo(m_hOutput, &info);
}

void CConsoleScreen::PlaceCursor(std::int64_t row, std::int64_t column) {
    SetConsoleCursorPosition(m_hOutput, {ToCoordinate(column), ToCoordinate(row)});
}

void CConsoleScreen::CursorForward(int count) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    const std::int64_t column = std::int64_t{info.dwCursorPosition.X} + count;
    const std::int64_t lastColumn = info.dwMaximumWindowSize.X - 1;
    PlaceCursor(info.dwCursorPosition.Y, std::min(column, lastColumn));
}

void CConsoleScreen::CursorBack(int count) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    const std::int64_t column = std::int64_t{info.dwCursorPosition.X} - count;
    PlaceCursor(info.dwCursorPosition.Y, std::max<std::int64_t>(column, 0));
}

void CConsoleScreen::SetCursorPosition(int row, int column) {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    PlaceCursor(std::min(row, info.dwMaximumWindowSize.Y - 1),
                std::min(column, info.dwMaximumWindowSize.X - 1));
}

void CConsoleScreen::ClearScreen() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    const int cells = info.dwMaximumWindowSize.X * info.dwMaximumWindowSize.Y;
    FillCells({0, 0}, static_cast<DWORD>(std::max(cells, 0)));
}

void CConsoleScreen::EraseToLineEnd() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    const int cells = info.dwMaximumWindowSize.X - info.dwCursorPosition.X - 1;
    FillCells(info.dwCursorPosition, static_cast<DWORD>(std::max(cells, 0)));
}

void CConsoleScreen::SetColors(int foreground, int background) {
    const auto attribute =
        static_cast<unsigned>(background) * 16 + static_cast<unsigned>(foreground);
    m_byAttribute = static_cast<BYTE>(attribute & 0xFF);
    if (m_bActive)
        SetConsoleTextAttribute(m_hOutput, m_byAttribute | m_wExactColors);
}

void CConsoleScreen::SetAttributeFlags(WORD flags) {
    m_wAttributeFlags = flags;
}

WORD CConsoleScreen::GetAttributeFlags() {
    return m_wAttributeFlags;
}

void CConsoleScreen::GetCursor(int& column, int& row) {
    column = 0;
    row = 0;
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!ReadScreen(info))
        return;
    column = info.dwCursorPosition.X;
    row = info.dwCursorPosition.Y;
}

void CConsoleScreen::FillCells(COORD start, DWORD count) {
    if (!m_bActive || count == 0)
        return;
    DWORD filled = 0;
    FillConsoleOutputCharacterA(m_hOutput, ' ', count, start, &filled);
    FillConsoleOutputAttribute(m_hOutput, m_byAttribute | m_wExactColors, count, start, &filled);
}

void CConsoleScreen::NewLine() {
    PutChar('\n');
}

void CConsoleScreen::InsertChar() {}
void CConsoleScreen::CursorUp(int) {}
void CConsoleScreen::CursorDown(int) {}
void CConsoleScreen::EraseToScreenStart() {}
void CConsoleScreen::EraseToScreenEnd() {}
void CConsoleScreen::EraseToLineStart() {}
void CConsoleScreen::DeleteLine() {}
void CConsoleScreen::InsertLine() {}
void CConsoleScreen::DeleteChar() {}
void CConsoleScreen::ScrollUp(int) {}
void CConsoleScreen::ScrollDown(int) {}
void CConsoleScreen::SetScrollRegion(int, int, int, int) {}
