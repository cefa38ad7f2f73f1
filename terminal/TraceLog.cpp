#include "terminal/TraceLog.h"

#include "platform/Error.h"
#include "terminal/UserMessage.h"

CTraceLog::~CTraceLog() {
    if (m_bCapturing)
        DumpPending();
    SetTraceSink(nullptr);
    if (m_bCapturing && !m_file.Close())
        TellFailure(GetLastError());
}

BOOL CTraceLog::Open(const std::string& fileName) {
    if (!m_file.Open(fileName)) {
        const DWORD error = GetLastError();
        TellUser(m_console, "Cannot create %s\n", fileName.c_str());
        TellReason(m_console, error);
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

// On a line of its own: the device may have left the cursor anywhere.
void CTraceLog::TellFailure(DWORD error) {
    m_bCapturing = FALSE;
    TellUser(m_console, "\nCannot write %s: %s\n", m_strFileName.c_str(), DescribeError(error));
}
