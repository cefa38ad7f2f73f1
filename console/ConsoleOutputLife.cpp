// The screen's beginning, end and waits.
#include "console/ConsoleOutput.h"

#include "platform/objects/EndRequest.h"

#include <algorithm>
#include <string_view>
#include <utility>

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
    m_alternate.Use(m_bTerminal ? terminalType : nullptr);
    m_gather.Channel().Use(descriptor);
    if (!m_bTerminal) {
        m_cursor.BeginPlain();
        return;
    }
    int columns = 0;
    int rows = 0;
    ReadSize(columns, rows);
    m_cursor.Begin(columns, rows);
}

void CConsoleOutput::ReadSize(int& columns, int& rows) const {
    constexpr int COLUMNS_WITHOUT_SIZE = 80;
    constexpr int ROWS_WITHOUT_SIZE = 25;
    constexpr int MOST = INT16_MAX; // what COORD holds
    winsize size{};
    if (ioctl(m_gather.Channel().Descriptor(), TIOCGWINSZ, &size) != 0)
        size = {};
    columns = size.ws_col != 0 ? std::min<int>(size.ws_col, MOST) : COLUMNS_WITHOUT_SIZE;
    rows = size.ws_row != 0 ? std::min<int>(size.ws_row, MOST) : ROWS_WITHOUT_SIZE;
}

void CConsoleOutput::FollowSize() {
    if (!m_bTerminal || !m_bSizeChanged.load(std::memory_order_relaxed))
        return;
    m_bSizeChanged.store(false, std::memory_order_relaxed);
    int columns = 0;
    int rows = 0;
    ReadSize(columns, rows);
    if (columns == m_cursor.Columns() && rows == m_cursor.Rows())
        return;
    EndEasy();
    EndFill();
    m_cursor.Resize(columns, rows);
    m_bSizeNews = true;
}

bool CConsoleOutput::TakeSizeChange() {
    FollowSize();
    return std::exchange(m_bSizeNews, false);
}

void CConsoleOutput::Begin() {
    EndEasy();
    m_gather.Channel().Open();
    m_dwObstacles &= ~static_cast<unsigned>(DIRECT);
    m_fill.KeepScreenOnce();
    if (!m_bTerminal)
        return;
    int columns = 0;
    int rows = 0;
    ReadSize(columns, rows);
    m_cursor.Begin(columns, rows);
}

int CConsoleOutput::MostMillisecondsWithoutProgress() {
    return IsEndRequested() ? 1000 : 2000;
}

void CConsoleOutput::End() {
    if ((m_dwObstacles & DIRECT) != 0)
        return;
    if (LeaveTerminal())
        m_title.Restore();
    if (!m_gather.Drain(MostMillisecondsWithoutProgress())) {
        m_colours.Forget();
        m_bLost = true;
    }
    m_gather.Abandon();
    m_decoder.Drop();
    m_gather.Channel().Close();
    m_dwObstacles = DIRECT;
}

void CConsoleOutput::Suspend() {
    if (LeaveTerminal())
        m_gather.Drain(MostMillisecondsWithoutProgress());
}

void CConsoleOutput::Resume() {
    EndEasy();
    if (!m_bTerminal)
        return;
    NoteSizeChange();
    FollowSize();
    m_colours.Forget();
    m_cursor.Forget();
}

// Begins with an empty buffer, so that nothing here waits in a way that serves the console: this
// may be part of serving it. FALSE when the terminal takes nothing any more.
bool CConsoleOutput::LeaveTerminal() {
    EndEasy();
    m_alternate.Leave();
    if (!m_gather.Drain(MostMillisecondsWithoutProgress()))
        return false;
    EndSequence();
    EndFill();
    EndHeldReturn();
    if (!m_bTerminal) {
        // A terminal that gets plain text needs its shell's prompt on a line of its own as well.
        if (isatty(m_gather.Channel().Descriptor()) != 0)
            m_gather.Put('\n');
        return true;
    }
    m_colours.Sync(CConsoleColours::DEFAULT);
    m_cursor.GoBelow();
    return true;
}

bool CConsoleOutput::EnterAlternate() {
    LetOut();
    return m_alternate.Enter();
}

void CConsoleOutput::GoBelow() {
    EndEasy();
    if (!m_bTerminal || !EnsureRoom())
        return;
    FollowSize();
    EndSequence();
    EndFill();
    m_colours.Sync(CConsoleColours::DEFAULT);
    m_cursor.GoBelow();
}

bool CConsoleOutput::HasWork() const {
    if (m_gather.IsStalled() || m_gather.IsGone())
        return false;
    return m_gather.Count() != 0 || NeedsSync() || (m_dwObstacles & FILL) != 0;
}

void CConsoleOutput::LetOut() {
    EndEasy();
    EndFill();
    if (NeedsSync() && m_gather.HasRoom())
        m_cursor.Sync();
    if (!m_gather.IsStalled())
        m_gather.TryWrite();
}

void CConsoleOutput::ContinueAfterStall() {
    EndEasy();
    m_gather.EndStall();
    m_gather.TryWrite();
}

int CConsoleOutput::WaitDescriptor() const {
    return m_gather.IsGone() ? -1 : m_gather.Channel().Descriptor();
}

bool CConsoleOutput::IsReady() const {
    return m_gather.IsGone() || m_gather.Count() < CConsoleGather::HIGH_WATER;
}

bool CConsoleOutput::TryAcquire(short events) {
    if (events != 0 && !IsReady())
        ContinueAfterStall();
    return IsReady();
}

} // namespace platform
