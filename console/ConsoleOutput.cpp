// The parts of the screen share one buffer, one cursor and one state of the colours; here is what
// concerns several of them: the beginning and the end, what must be settled before a part is used,
// and what the waits ask. The text itself is ConsoleText.cpp.
#include "console/ConsoleOutput.h"

#include "platform/objects/EndRequest.h"

#include <algorithm>

#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {

// A locale without a character set of its own is as likely one that nobody has set up, and a file
// or a program can do with UTF-8: only a terminal is kept from it.
void CConsoleOutput::Use(int descriptor, const char* terminalType, const CCharacterSet& set) {
    const bool isTerminal = isatty(descriptor) != 0;
    m_gather.Use(set.IsAscii() && !isTerminal ? CCharacterSet::Utf8() : set);
    const std::string_view type = terminalType != nullptr ? terminalType : "";
    m_bTerminal = isTerminal && !type.empty() && type != "dumb";
    m_bTitle = m_bTerminal && CConsoleTitle::IsPossible(terminalType);
    m_text.Use(m_bTerminal);
    m_alternate.Use(m_bTerminal ? terminalType : nullptr);
    m_gather.Channel().Use(descriptor);
    if (m_bTerminal)
        m_cursor.Begin(ReadSize());
    else
        m_cursor.BeginPlain();
}

COORD CConsoleOutput::ReadSize() const {
    constexpr COORD kWithoutSize = {80, 25};
    winsize size{};
    if (ioctl(m_gather.Channel().Descriptor(), TIOCGWINSZ, &size) != 0)
        size = {};
    const auto orUsual = [](int told, SHORT usual) {
        return told != 0 ? static_cast<SHORT>(std::min<int>(told, INT16_MAX)) : usual;
    };
    return {orUsual(size.ws_col, kWithoutSize.X), orUsual(size.ws_row, kWithoutSize.Y)};
}

bool CConsoleOutput::FollowSize() {
    const COORD size = ReadSize();
    if (!m_bTerminal || (size.X == m_cursor.Columns() && size.Y == m_cursor.Rows()))
        return false;
    m_fill.End();
    m_cursor.Resize(size);
    return true;
}

void CConsoleOutput::Begin() {
    m_gather.Channel().Open();
    m_bDirect = false;
    m_fill.KeepScreenOnce();
    if (m_bTerminal)
        m_cursor.Begin(ReadSize());
}

int CConsoleOutput::MostMillisecondsWithoutProgress() {
    return IsEndRequested() ? 1000 : 2000;
}

void CConsoleOutput::End() {
    if (m_bDirect)
        return;
    if (LeaveTerminal())
        m_title.Restore();
    if (!m_gather.Drain(MostMillisecondsWithoutProgress())) {
        m_colours.Forget();
        m_bLost = true;
    }
    m_gather.Abandon();
    m_text.Forget();
    m_fill.Forget();
    m_gather.Channel().Close();
    m_bDirect = true;
}

void CConsoleOutput::Suspend() {
    if (LeaveTerminal())
        m_gather.Drain(MostMillisecondsWithoutProgress());
}

bool CConsoleOutput::Resume() {
    if (!m_bTerminal)
        return false;
    const bool hasChanged = FollowSize();
    m_colours.Forget();
    m_cursor.Forget();
    return hasChanged;
}

// Begins with an empty buffer, so that nothing here waits in a way that serves the console: this
// may be part of serving it. FALSE when the terminal takes nothing any more.
bool CConsoleOutput::LeaveTerminal() {
    m_alternate.Leave();
    if (!m_gather.Drain(MostMillisecondsWithoutProgress()))
        return false;
    m_text.Settle();
    m_text.EndHeldReturn();
    if (!m_bTerminal) {
        // A terminal that gets plain text needs its shell's prompt on a line of its own as well.
        if (isatty(m_gather.Channel().Descriptor()) != 0)
            m_gather.Put('\n');
        return true;
    }
    m_colours.Sync(CConsoleColours::kDefault);
    m_cursor.GoBelow();
    return true;
}

bool CConsoleOutput::EnterAlternate() {
    LetOut();
    return m_alternate.Enter();
}

void CConsoleOutput::GoBelow() {
    if (!m_bTerminal || !m_gather.EnsureRoom())
        return;
    m_text.Settle();
    m_colours.Sync(CConsoleColours::kDefault);
    m_cursor.GoBelow();
}

bool CConsoleOutput::Write(const std::uint8_t* bytes, std::size_t count) {
    const bool isTaken = m_text.Write(bytes, count);
    return isTaken && m_bDirect ? m_gather.Drain(-1) : isTaken;
}

void CConsoleOutput::SetAttribute(WORD attribute) {
    if (!m_bTerminal)
        return;
    m_text.Settle();
    m_colours.Want(attribute);
}

void CConsoleOutput::Ring() {
    if (isatty(m_gather.Channel().Descriptor()) == 0 || !m_gather.EnsureRoom())
        return;
    m_text.EndHeldReturn();
    m_gather.Put('\a');
}

void CConsoleOutput::SetTitle(std::string_view title) {
    if (m_bTitle && !m_bDirect && m_gather.EnsureRoom())
        m_title.Set(title);
}

bool CConsoleOutput::SetPosition(COORD position) {
    if (!m_bTerminal)
        return true;
    m_text.Settle();
    if (!IsInWindow(position))
        return false;
    m_cursor.Place(position.X, position.Y);
    return true;
}

void CConsoleOutput::GetInfo(CONSOLE_SCREEN_BUFFER_INFO& info) {
    const auto columns = static_cast<SHORT>(m_cursor.Columns());
    const auto rows = static_cast<SHORT>(m_cursor.Rows());
    info.dwSize = {columns, rows};
    info.dwCursorPosition = {static_cast<SHORT>(m_cursor.Column()),
                             static_cast<SHORT>(m_cursor.Row())};
    info.wAttributes = m_colours.Wanted();
    info.srWindow = {0, 0, static_cast<SHORT>(columns - 1), static_cast<SHORT>(rows - 1)};
    info.dwMaximumWindowSize = {columns, rows};
}

bool CConsoleOutput::IsInWindow(COORD position) const {
    return position.X >= 0 && position.Y >= 0 && position.X < m_cursor.Columns() &&
           position.Y < m_cursor.Rows();
}

// As many as the window has.
CConsoleOutput::Cells CConsoleOutput::CellsFrom(COORD start, DWORD length) const {
    const int first = start.Y * m_cursor.Columns() + start.X;
    const int room = std::max(m_cursor.Columns() * m_cursor.Rows() - first, 0);
    return {first, static_cast<int>(std::min(length, static_cast<DWORD>(room)))};
}

int CConsoleOutput::Fill(char character, DWORD length, COORD start) {
    if (!m_bTerminal)
        return static_cast<int>(std::min<DWORD>(length, INT32_MAX));
    m_text.Settle();
    if (!IsInWindow(start))
        return -1;
    const Cells cells = CellsFrom(start, length);
    m_fill.Remember(cells.first, cells.count, static_cast<std::uint8_t>(character));
    return cells.count;
}

bool CConsoleOutput::ColourFill(WORD attribute, DWORD length, COORD start) {
    if (!m_bTerminal || length == 0)
        return true;
    const Cells cells = CellsFrom(start, length);
    if (!m_fill.IsPending(cells.first, cells.count))
        return false;
    m_fill.Draw(CConsoleColours::Normal(attribute));
    return true;
}

bool CConsoleOutput::HasWork() const {
    if (m_gather.IsStalled() || m_gather.IsGone())
        return false;
    return m_gather.Count() != 0 || NeedsSync() || m_fill.IsPending();
}

void CConsoleOutput::LetOut() {
    m_fill.End();
    if (NeedsSync() && m_gather.HasRoom())
        m_cursor.Sync();
    if (!m_gather.IsStalled())
        m_gather.TryWrite();
}

void CConsoleOutput::ContinueAfterStall() {
    m_gather.EndStall();
    m_gather.TryWrite();
}

int CConsoleOutput::WaitDescriptor() const {
    return m_gather.IsGone() ? -1 : m_gather.Channel().Descriptor();
}

bool CConsoleOutput::IsReady() const {
    return m_gather.IsGone() || m_gather.Count() < CConsoleGather::kHighWater;
}

bool CConsoleOutput::TryAcquire(short events) {
    if (events != 0 && !IsReady())
        ContinueAfterStall();
    return IsReady();
}

} // namespace platform
