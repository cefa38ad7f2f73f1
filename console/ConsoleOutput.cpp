#include "console/ConsoleOutput.h"

#include "console/ConsoleGlyphs.h"
#include "platform/terminal/Characters.h"

#include <algorithm>

#include <unistd.h>

namespace platform {
namespace {

constexpr std::uint8_t BELL = 0x07;
constexpr std::uint8_t BACKSPACE = 0x08;
constexpr std::uint8_t TAB = 0x09;
constexpr std::uint8_t LINE_FEED = 0x0A;
constexpr std::uint8_t CARRIAGE_RETURN = 0x0D;
constexpr int TAB_COLUMNS = 8;

bool IsPrintable(std::uint8_t byte) {
    return byte >= 0x20 && byte < 0x7F;
}

} // namespace

std::size_t CConsoleOutput::EasyRoom() const {
    const int columns = m_cursor.EasyColumns();
    if ((m_dwObstacles | m_cursor.Obstacles()) != 0 || !m_colours.IsEasy() || columns <= 0)
        return 0;
    return std::min(static_cast<std::size_t>(columns), m_gather.EasyRoom());
}

bool CConsoleOutput::Write(const std::uint8_t* bytes, std::size_t count) {
    EndEasy();
    const std::uint8_t* const end = bytes + count;
    while (bytes != end) {
        if (IsPrintable(*bytes))
            bytes = WriteRun(bytes, end);
        if (bytes != end && !WriteByte(*bytes++))
            return false;
    }
    m_nEasy = EasyRoom();
    if ((m_dwObstacles & DIRECT) != 0)
        return m_gather.Drain(-1);
    return true;
}

const std::uint8_t* CConsoleOutput::WriteRun(const std::uint8_t* bytes, const std::uint8_t* end) {
    // A change of colours alone is no reason for the long way.
    if (!m_colours.IsEasy() && (m_dwObstacles | m_cursor.Obstacles()) == 0 && EnsureRoom())
        m_colours.Sync();
    const auto most = std::min(EasyRoom(), static_cast<std::size_t>(end - bytes));
    const std::size_t run = m_gather.PutPrintable(bytes, most);
    m_cursor.Advance(static_cast<int>(run));
    return bytes + run;
}

bool CConsoleOutput::WriteByte(std::uint8_t byte) {
    EndFill();
    if (!EnsureRoom())
        return false;
    if (m_decoder.IsIdle() && byte < 0x80) {
        if (IsPrintable(byte)) {
            const char character = static_cast<char>(byte);
            Draw({&character, 1}, 1);
        } else {
            WriteControl(byte);
        }
        return true;
    }
    switch (m_decoder.Feed(byte)) {
    case CUtf8Decoder::Result::MORE:
        m_dwObstacles |= SEQUENCE;
        return true;
    case CUtf8Decoder::Result::CHARACTER:
        m_dwObstacles &= ~static_cast<unsigned>(SEQUENCE);
        WriteCharacter();
        return true;
    case CUtf8Decoder::Result::INVALID:
        Draw(PictureOf(byte), 1);
        return true;
    case CUtf8Decoder::Result::BROKEN:
        break;
    }
    DrawBroken();
    return WriteByte(byte);
}

// The bytes of a sequence that has come to nothing.
void CConsoleOutput::DrawBroken() {
    m_dwObstacles &= ~static_cast<unsigned>(SEQUENCE);
    m_decoder.Drop();
    for (const char byte : m_decoder.Bytes())
        Draw(PictureOf(static_cast<std::uint8_t>(byte)), 1);
}

void CConsoleOutput::WriteControl(std::uint8_t byte) {
    if (byte == BELL) {
        EndHeldReturn();
        m_gather.Put(BELL);
        return;
    }
    if (!m_bTerminal) {
        WritePlainControl(byte);
        return;
    }
    switch (byte) {
    case BACKSPACE:
        m_cursor.Backspace();
        break;
    case TAB:
        DrawTab();
        break;
    case LINE_FEED:
        LineFeed();
        break;
    case CARRIAGE_RETURN:
        m_cursor.CarriageReturn();
        break;
    default:
        Draw(PictureOf(byte), 1);
    }
}

void CConsoleOutput::WritePlainControl(std::uint8_t byte) {
    if (byte == CARRIAGE_RETURN) { // several of them, as modems echo one, do what one does
        m_dwObstacles |= HELD_RETURN;
        return;
    }
    if (byte == LINE_FEED) // takes the place of a CR before it
        m_dwObstacles &= ~static_cast<unsigned>(HELD_RETURN);
    EndHeldReturn();
    if (byte == LINE_FEED || byte == BACKSPACE || byte == TAB)
        m_gather.Put(byte);
    else
        Draw(PictureOf(byte), 1);
}

void CConsoleOutput::WriteCharacter() {
    switch (KindOf(m_decoder, m_gather.Set())) {
    case CharacterKind::NARROW:
        return Draw(m_decoder.Bytes(), 1);
    case CharacterKind::WIDE:
        return m_cursor.Columns() < 2 ? Draw(REPLACEMENT, 1) : Draw(m_decoder.Bytes(), 2);
    case CharacterKind::COMBINING:
        return Draw(m_decoder.Bytes(), 0);
    case CharacterKind::CONTROL:
        return Draw(PictureOf(static_cast<std::uint8_t>(m_decoder.Code())), 1);
    case CharacterKind::REPLACED:
        return Draw(REPLACEMENT, 1);
    case CharacterKind::LACKING:
        return Draw(LACKING, 1);
    case CharacterKind::OMITTED:
        return;
    }
}

void CConsoleOutput::Draw(std::string_view character, int width) {
    if (!m_bTerminal) {
        EndHeldReturn();
        m_cursor.BeginPlain(); // before the columns come to their end
        m_gather.PutText(character);
        return;
    }
    m_colours.Sync();
    if (width == 0)
        m_cursor.Sync();
    else
        m_cursor.BeforeCharacter(width);
    m_gather.PutText(character);
    if (width != 0)
        m_cursor.AfterCharacter(width);
}

void CConsoleOutput::DrawTab() {
    const int next = m_cursor.Column() / TAB_COLUMNS * TAB_COLUMNS + TAB_COLUMNS;
    for (int column = std::min(next, m_cursor.Columns() - 1); column > m_cursor.Column();)
        Draw(" ", 1);
}

void CConsoleOutput::LineFeed() {
    FollowSize();
    m_colours.SyncBackground();
    m_cursor.LineFeed();
}

void CConsoleOutput::EndSequence() {
    if ((m_dwObstacles & SEQUENCE) != 0 && EnsureRoom())
        DrawBroken();
}

void CConsoleOutput::EndFill() {
    if ((m_dwObstacles & FILL) == 0)
        return;
    m_dwObstacles &= ~static_cast<unsigned>(FILL);
    m_fill.Draw(m_colours.Wanted());
}

void CConsoleOutput::EndHeldReturn() {
    if ((m_dwObstacles & HELD_RETURN) == 0)
        return;
    m_dwObstacles &= ~static_cast<unsigned>(HELD_RETURN);
    m_gather.Put(CARRIAGE_RETURN);
}

void CConsoleOutput::SetAttribute(WORD attribute) {
    EndEasy();
    if (!m_bTerminal)
        return;
    EndSequence();
    EndFill();
    m_colours.Want(attribute);
}

void CConsoleOutput::Ring() {
    EndEasy();
    if (isatty(m_gather.Channel().Descriptor()) == 0 || !EnsureRoom())
        return;
    EndHeldReturn();
    m_gather.Put(BELL);
}

void CConsoleOutput::SetTitle(std::string_view title) {
    EndEasy();
    if (m_bTitle && (m_dwObstacles & DIRECT) == 0 && EnsureRoom())
        m_title.Set(title);
}

bool CConsoleOutput::SetPosition(COORD position) {
    EndEasy();
    if (!m_bTerminal)
        return true;
    FollowSize();
    EndSequence();
    EndFill();
    if (position.X < 0 || position.Y < 0 || position.X >= m_cursor.Columns() ||
        position.Y >= m_cursor.Rows())
        return false;
    m_cursor.Place(position.X, position.Y);
    return true;
}

void CConsoleOutput::GetInfo(CONSOLE_SCREEN_BUFFER_INFO& info) {
    FollowSize();
    const auto columns = static_cast<SHORT>(m_cursor.Columns());
    const auto rows = static_cast<SHORT>(m_cursor.Rows());
    info.dwSize = {columns, rows};
    info.dwCursorPosition = {static_cast<SHORT>(m_cursor.Column()),
                             static_cast<SHORT>(m_cursor.Row())};
    info.wAttributes = m_colours.Wanted();
    info.srWindow = {0, 0, static_cast<SHORT>(columns - 1), static_cast<SHORT>(rows - 1)};
    info.dwMaximumWindowSize = {columns, rows};
}

int CConsoleOutput::Fill(char character, DWORD length, COORD start) {
    EndEasy();
    if (!m_bTerminal)
        return static_cast<int>(std::min<DWORD>(length, INT32_MAX));
    FollowSize();
    EndSequence();
    EndFill();
    if (start.X < 0 || start.Y < 0 || start.X >= m_cursor.Columns() || start.Y >= m_cursor.Rows())
        return -1;
    const int first = start.Y * m_cursor.Columns() + start.X;
    const int room = m_cursor.Columns() * m_cursor.Rows() - first;
    const int count = static_cast<int>(std::min(length, static_cast<DWORD>(room)));
    m_fill.Remember(first, count, static_cast<std::uint8_t>(character));
    if (count != 0)
        m_dwObstacles |= FILL;
    return count;
}

bool CConsoleOutput::ColourFill(WORD attribute, DWORD length, COORD start) {
    EndEasy();
    if (!m_bTerminal || length == 0)
        return true;
    const int first = start.Y * m_cursor.Columns() + start.X;
    const int room = m_cursor.Columns() * m_cursor.Rows() - first;
    const int count = static_cast<int>(std::min(length, static_cast<DWORD>(std::max(room, 0))));
    if ((m_dwObstacles & FILL) == 0 || !m_fill.IsRemembered(first, count))
        return false;
    m_dwObstacles &= ~static_cast<unsigned>(FILL);
    m_fill.Draw(CConsoleColours::Normal(attribute));
    return true;
}

} // namespace platform
