// The bytes' way through CVSerial: Write and Read. A writer that waits for space goes on receiving:
// a device that echoes takes nothing more once its echo is not taken, and whoever would read that
// is held in the write.
#include "CORE/VXSerial/Lib/OverlappedRecord.h"
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"
#include "platform/comm/CommIntake.h"

#include <algorithm>

DWORD CVSerial::Write(LPCVOID pBuffer, DWORD dwCount) {
    DEBUG_ASSERT(pBuffer);
    const CLock lock(m_CritSec);
    if (!IsOpen()) {
        DebugReport("CVSerial::Write() - The port is not open");
        return 0;
    }
    const auto* const bytes = static_cast<const BYTE*>(pBuffer);
    DWORD dwWritten = 0;
    bool isOverflowReported = false;
    while (bytes && dwWritten < dwCount && WaitForSpace(isOverflowReported))
        dwWritten += m_cvTXBuffer.Write(bytes + dwWritten, dwCount - dwWritten);
    DEBUG_ASSERT(dwWritten == dwCount);
    return dwWritten;
}

// Waits until the transmit buffer has space. False when the wait failed: the thread was terminated.
bool CVSerial::WaitForSpace(bool& isOverflowReported) {
    const HANDLE space = m_cvTXBuffer.GetSpaceEvent();
    DWORD result = WaitForSingleObject(space, 0);
    if (result != WAIT_TIMEOUT)
        return result == WAIT_OBJECT_0;
    BOOL isDiscarded = FALSE;
    result = platform::WaitWhileReceiving(space, m_hPort, &isDiscarded);
    if (isDiscarded && !isOverflowReported) {
        DebugReport("CVSerial::Write() - Receive queue overflow");
        isOverflowReported = true;
    }
    return result == WAIT_OBJECT_0;
}

DWORD CVSerial::Read(LPVOID pBuffer, DWORD dwCount) {
    DEBUG_ASSERT(pBuffer);
    const CLock lock(m_CritSec);
    if (!IsOpen()) {
        DebugReport("CVSerial::Read() - The port is not open");
        return 0;
    }
    DWORD errors = 0;
    COMSTAT status = {};
    if (!ClearCommError(m_hPort, &errors, &status)) {
        ReportLastError("CVSerial::Read() - ClearCommError()");
        return 0;
    }
    if (errors != 0)
        DebugReport("CVSerial::Read() - Comm error detected %#08lx",
                    static_cast<unsigned long>(errors));
    dwCount = std::min(pBuffer ? dwCount : 0, status.cbInQue);
    if (dwCount == 0)
        return 0;
    if (m_bOverlapped)
        return ReadOverlapped(pBuffer, dwCount);
    DWORD dwRead = 0;
    // The report carries this very text.
    DEBUG_VERIFY(::ReadFile(m_hPort, pBuffer, dwCount, &dwRead, NULL)); // NOLINT(*-use-nullptr)
    return dwRead;
}

DWORD CVSerial::ReadOverlapped(LPVOID pBuffer, DWORD dwCount) {
    COverlappedRecord& record = COverlappedRecord::ForReads();
    DWORD dwRead = 0;
    if (!ReadFile(m_hPort, pBuffer, dwCount, &dwRead, record.Get())) {
        dwRead = 0;
        if (GetLastError() != ERROR_IO_PENDING)
            DebugReport("CVSerial::Read() - ::ReadFile() failed");
        else if (!GetOverlappedResult(m_hPort, record.Get(), &dwRead, TRUE))
            ReportLastError("CVSerial::Read() - GetOverlappedResult()");
    }
    record.Reset();
    return dwRead;
}
