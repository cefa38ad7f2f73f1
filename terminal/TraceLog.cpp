#include "terminal/TraceLog.h"

#include "platform/Error.h"
#include "platform/objects/EndRequest.h"
#include "platform/objects/ThreadTimer.h"
#include "terminal/Console.h"
#include "terminal/UserMessage.h"

namespace {

// How long the file may take for its rest at the end before the user is told.
constexpr DWORD kPatience = 1000;

// How long what was received may wait for the next send.
constexpr DWORD kLongestKept = 1000;

} // namespace

CTraceLog::~CTraceLog() {
    platform::StopThreadTimer();
    if (m_bCapturing)
        DumpPending();
    SetTraceSink(nullptr);
    if (!m_file.Finish(kPatience) && !platform::IsEndRequested())
        TellWait();
    if (!m_file.Close() && m_dwFailure == ERROR_SUCCESS)
        m_dwFailure = GetLastError();
    if (m_bCapturing && m_dwFailure != ERROR_SUCCESS)
        TellFailure();
}

BOOL CTraceLog::Open(const std::string& fileName) {
    if (!m_file.Open(fileName)) {
        TellFileFailure(m_console, "Cannot create", fileName, GetLastError());
        return FALSE;
    }
    m_strFileName = fileName;
    m_bCapturing = TRUE;
    SetTraceSink(this);
    return TRUE;
}

void CTraceLog::WriteLine(std::string_view line) {
    if (!m_bCapturing)
        return;
    if (m_dwFailure == ERROR_SUCCESS && !m_file.AppendLine(line))
        m_dwFailure = GetLastError();
    // In the timer's call the console may be in the midst of something.
    if (m_dwFailure != ERROR_SUCCESS && !m_bInTimer)
        TellFailure();
}

void CTraceLog::OnReceiving(bool fits) {
    if (!m_bCapturing)
        return;
    if (m_dwFailure != ERROR_SUCCESS)
        return TellFailure();
    if (!fits)
        DumpPending();
    if (m_bTimerSet)
        return;
    m_bTimerSet = true;
    platform::SetThreadTimer(
        kLongestKept, [](void* log) { static_cast<CTraceLog*>(log)->OnTimer(); }, this);
}

void CTraceLog::OnTimer() {
    m_bTimerSet = false;
    m_bInTimer = true;
    DumpPending();
    m_bInTimer = false;
    m_file.WriteSoon();
}

// The console goes back first, so that Ctrl+C and the signals end the program.
void CTraceLog::TellWait() {
    m_console.Restore();
    TellUser(m_console, "wirelet: waiting for " + m_strFileName +
                            " to take the rest of the log; Ctrl+C ends that\n");
}

// On a line of its own: the device may have left the cursor anywhere.
void CTraceLog::TellFailure() {
    m_bCapturing = FALSE;
    TellFileError(m_console, "\nCannot write", m_strFileName, m_dwFailure);
}
