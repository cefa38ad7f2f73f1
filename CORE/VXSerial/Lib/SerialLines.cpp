// The control lines and the queues of CVSerial.
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

#include <algorithm>

namespace {

struct ModemLine {
    DWORD modemStatus;
    DWORD lineStatus;
};

constexpr ModemLine kModemLines[] = {
    {MS_CTS_ON, LINE_CTS},
    {MS_DSR_ON, LINE_DSR},
    {MS_RING_ON, LINE_RING},
    {MS_RLSD_ON, LINE_DCD},
};

} // namespace

BOOL CVSerial::SetLine(DWORD dwLine, BOOL bState) {
    const CLock lock(m_CritSec);
    if (!IsOpen()) {
        DebugReport("CVSerial::SetLine() - No port handle");
        return FALSE;
    }
    if (dwLine != LINE_DTR && dwLine != LINE_RTS) {
        DEBUG_ASSERT(FALSE);
        return FALSE;
    }
    const DWORD raise = dwLine == LINE_DTR ? SETDTR : SETRTS;
    const DWORD drop = dwLine == LINE_DTR ? CLRDTR : CLRRTS;
    if (!EscapeCommFunction(m_hPort, bState ? raise : drop))
        return ReportLastError("CVSerial::SetLine() - EscapeCommFunction()");
    if (bState)
        m_wLineState |= static_cast<WORD>(dwLine);
    else
        m_wLineState &= static_cast<WORD>(~dwLine);
    return TRUE;
}

DWORD CVSerial::GetLineStatus() {
    if (!IsOpen()) {
        DebugReport("CVSerial::GetLineStatus() - No port handle");
        return 0;
    }
    DWORD lines = m_wLineState;
    DWORD dwTemp = 0;
    COMSTAT sComStat = {};
    DEBUG_VERIFY(ClearCommError(m_hPort, &dwTemp, &sComStat));
    DWORD buffered = 0;
    m_cvTXBuffer.GetBufferStatus(nullptr, &buffered, nullptr);
    if (sComStat.cbOutQue != 0 || buffered != 0)
        lines |= LINE_TXPENDING;
    if (sComStat.cbInQue != 0)
        lines |= LINE_RXREADY;

    dwTemp = 0;
    DEBUG_VERIFY(GetCommModemStatus(m_hPort, &dwTemp));
    for (const ModemLine& line : kModemLines)
        lines |= (dwTemp & line.modemStatus) != 0 ? line.lineStatus : 0;
    return lines;
}

BOOL CVSerial::Flush(DWORD dwSelector) {
    const CLock lock(m_CritSec);
    if (!IsOpen()) {
        DebugReport("CVSerial::Flush() - No port handle");
        return FALSE;
    }
    if (dwSelector < _QUE_RX || dwSelector > _QUE_RXTX) {
        DEBUG_ASSERT(FALSE);
        return FALSE;
    }
    if (dwSelector == _QUE_RX) {
        DEBUG_VERIFY(PurgeComm(m_hPort, PURGE_RXABORT | PURGE_RXCLEAR));
        return TRUE;
    }
    const CLock handOver(m_HandOverCritSec);
    m_cvTXBuffer.ClearBuffer(CVCommBuffer::kAllBytes);
    if (dwSelector == _QUE_TX)
        DEBUG_VERIFY(PurgeComm(m_hPort, PURGE_TXABORT | PURGE_TXCLEAR));
    else
        DEBUG_VERIFY(
            PurgeComm(m_hPort, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR));
    return TRUE;
}

DWORD CVSerial::GetQueueInfo(DWORD dwSelector) {
    const CLock lock(m_CritSec);
    DWORD size = 0;
    DWORD free = 0;
    m_cvTXBuffer.GetBufferStatus(&size, nullptr, &free);
    switch (dwSelector) {
    case _QUE_RXSIZE:
        return m_dwRXQueueSize;
    case _QUE_TXSIZE:
        return size;
    case _QUE_RXCOUNT:
        return CountReceived();
    case _QUE_TXCOUNT:
        return std::min(CountUnsent(), size);
    case _QUE_RXFREE:
        return m_dwRXQueueSize - std::min(CountReceived(), m_dwRXQueueSize);
    case _QUE_TXFREE:
        return free;
    default:
        DEBUG_ASSERT(FALSE);
        return 0;
    }
}

// The bytes in the driver's input queue; 0 when the port is closed or does not tell.
DWORD CVSerial::CountReceived() {
    if (!IsOpen())
        return 0;
    DWORD dwResult = 0;
    COMSTAT sComStat = {};
    DEBUG_VERIFY(ClearCommError(m_hPort, &dwResult, &sComStat));
    return sComStat.cbInQue;
}

// The bytes in the transmit buffer and the driver's output queue.
DWORD CVSerial::CountUnsent() {
    DWORD buffered = 0;
    m_cvTXBuffer.GetBufferStatus(nullptr, &buffered, nullptr);
    if (!IsOpen())
        return buffered;
    DWORD dwError = 0;
    COMSTAT sComStat = {};
    DEBUG_VERIFY(ClearCommError(m_hPort, &dwError, &sComStat));
    return buffered + sComStat.cbOutQue;
}
