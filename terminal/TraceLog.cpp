#include "terminal/TraceLog.h"

#include "platform/EndRequest.h"
#include "platform/Error.h"
#include "terminal/Console.h"
#include "terminal/UserMessage.h"

namespace {

// How long the file may take for its rest at the end before the user is told.
constexpr DWORD kPatience = 1000;

} // namespace

CTraceLog::~CTraceLog() {
    if (m_bCapturing)
        DumpPending();
    SetTraceSink(nullptr);
    if (!m_file.Finish(kPatience) && !platform::IsEndRequested())
        TellWait();
    if (!m_file.Close() && m_bCapturing)
        TellFailure(GetLastError());
}

BOOL CTraceLog::Open(const std::string& fileName) {
    if (!m_file.Open(fileName)) {
        const DWORD error = GetLastError();
        TellUser(m_console, "Cannot create %s\n", fileName.c_str());
        TellReason(m_console, error, fileName);
        return FALSE;
    }
    m_strFileName = fileName;
    m_bCapturing = TRUE;
    SetTraceSink(this);
    return TRUE;
}

void CTraceLog::WriteLine(std::string_view line) {
    if (m_bCapturing && !m_file.AppendLine(line))
        TellFailure(GetLastError());
}

// The console goes back first, so that Ctrl+C and the signals end the program.
void CTraceLog::TellWait() {
    m_console.Restore();
    TellUser(m_console, "wirelet: waiting for %s to take the rest of the log; Ctrl+C ends that\n",
             m_strFileName.c_str());
}

// On a line of its own: the device may have left the cursor anywhere.
void CTraceLog::TellFailure(DWORD error) {
    m_bCapturing = FALSE;
    TellUser(m_console, "\nCannot write %s: %s\n", m_strFileName.c_str(), DescribeError(error));
}
