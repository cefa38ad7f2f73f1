// The settings of CVSerial and their way to the driver. Every change is stored first; Reset then
// compares what is stored with what the port has, and touches only what differs.
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

#include <algorithm>

namespace {

void ChangeSetting(DWORD& setting, DWORD value) {
    if (value != KEEP_SETTING)
        setting = value;
}

// A setting as a field of the driver's record. What does not fit becomes a code that no driver has,
// so that it is refused and not taken for another one.
BYTE ToField(DWORD setting) {
    return static_cast<BYTE>(std::min<DWORD>(setting, 0xFF));
}

DWORD FlowControlOf(const DCB& dcb) {
    const bool isHandshake = dcb.fRtsControl == RTS_CONTROL_HANDSHAKE && dcb.fOutxCtsFlow;
    const bool isXonXoff = dcb.fOutX && dcb.fInX;
    return (isHandshake ? _FLOW_RTSCTS : _FLOW_NONE) + (isXonXoff ? _FLOW_XONXOFF : _FLOW_NONE);
}

} // namespace

BOOL CVSerial::SetBufferSizes(DWORD dwRXQueueSize, DWORD dwTXBufferSize) {
    const CLock lock(m_CritSec);
    ChangeSetting(m_dwRXQueueSize, dwRXQueueSize);
    ChangeSetting(m_dwTXBufferSize, dwTXBufferSize);
    return Reset();
}

BOOL CVSerial::SetDataFormat(DWORD dwBaudRate, DWORD dwParity, DWORD dwByteSize, DWORD dwStopBits) {
    const CLock lock(m_CritSec);
    ChangeSetting(m_dwBaudRate, dwBaudRate);
    ChangeSetting(m_dwParity, dwParity);
    ChangeSetting(m_dwByteSize, dwByteSize);
    ChangeSetting(m_dwStopBits, dwStopBits);
    return Reset();
}

BOOL CVSerial::GetDataFormat(LPDWORD lpBaudRate, LPDWORD lpParity, LPDWORD lpByteSize,
                             LPDWORD lpStopBits) {
    const CLock lock(m_CritSec);
    if (lpBaudRate) {
        DCB dcb = {};
        if (m_dwBaudRate == 0 && !GetCommState(m_hPort, &dcb))
            return ReportLastError("CVSerial::GetDataFormat() - GetCommState()");
        *lpBaudRate = m_dwBaudRate != 0 ? m_dwBaudRate : dcb.BaudRate;
    }
    if (lpParity)
        *lpParity = m_dwParity;
    if (lpByteSize)
        *lpByteSize = m_dwByteSize;
    if (lpStopBits)
        *lpStopBits = m_dwStopBits;
    return TRUE;
}

BOOL CVSerial::SetFlowControl(DWORD dwFlowControl) {
    const CLock lock(m_CritSec);
    m_dwFlowControl = dwFlowControl;
    return Reset();
}

DWORD CVSerial::GetFlowControl() {
    const CLock lock(m_CritSec);
    return m_dwFlowControl;
}

// Brings the open port to the stored settings; on a closed one they wait for the next opening.
BOOL CVSerial::Reset() {
    if (!IsOpen())
        return TRUE;
    COMMPROP properties = {};
    properties.wPacketLength = sizeof(properties);
    if (!GetCommProperties(m_hPort, &properties))
        return ReportLastError("CVSerial::Reset() - GetCommProperites()");
    DCB dcb = {};
    dcb.DCBlength = sizeof(dcb);
    if (!GetCommState(m_hPort, &dcb))
        return ReportLastError("CVSerial::Reset() - GetCommState()");
    if (!ResetQueueSizes(properties.dwCurrentRxQueue) || !ResetLineSettings(dcb) ||
        !ResetTimeouts())
        return FALSE;
    DWORD dwTemp = 0;
    DEBUG_VERIFY(GetCommModemStatus(m_hPort, &dwTemp));
    return TRUE;
}

// The write thread is stopped meanwhile: its chunk goes by the transmit buffer's capacity.
BOOL CVSerial::ResetQueueSizes(DWORD dwCurrentRXSize) {
    DWORD currentTXSize = 0;
    m_cvTXBuffer.GetBufferStatus(&currentTXSize, nullptr, nullptr);
    const DWORD dwTXBufferSize = m_dwTXBufferSize;
    if (m_dwRXQueueSize == dwCurrentRXSize && dwTXBufferSize == currentTXSize)
        return TRUE;
    DEBUG_VERIFY(StopWriteThread());
    DEBUG_VERIFY(m_cvTXBuffer.SetBufferSize(dwTXBufferSize) == dwTXBufferSize);
    if (!SetupComm(m_hPort, m_dwRXQueueSize, dwTXBufferSize))
        return ReportLastError("CVSerial::Reset() - SetupComm()");
    DEBUG_VERIFY(StartWriteThread());
    return TRUE;
}

BOOL CVSerial::ResetLineSettings(DCB& dcb) {
    if (m_dwBaudRate == 0 || !HasOtherSettings(dcb))
        return TRUE;
    dcb.BaudRate = m_dwBaudRate;
    dcb.Parity = ToField(m_dwParity);
    dcb.ByteSize = ToField(m_dwByteSize);
    dcb.StopBits = ToField(m_dwStopBits);
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fOutxDsrFlow = FALSE;
    StoreFlowControl(dcb);
    if (!SetCommState(m_hPort, &dcb)) {
        DebugReport("CVSerial::Reset() - SetCommState() failed - GetLastError() - %ld",
                    static_cast<long>(GetLastError()));
        return FALSE;
    }
    return TRUE;
}

bool CVSerial::HasOtherSettings(const DCB& dcb) const {
    return dcb.BaudRate != m_dwBaudRate || dcb.Parity != m_dwParity ||
           dcb.ByteSize != m_dwByteSize || dcb.StopBits != m_dwStopBits ||
           FlowControlOf(dcb) != m_dwFlowControl;
}

void CVSerial::StoreFlowControl(DCB& dcb) const {
    if (m_dwFlowControl > _FLOW_BOTH) {
        DEBUG_ASSERT(FALSE);
        return;
    }
    const bool isHandshake = (m_dwFlowControl & _FLOW_RTSCTS) != 0;
    const bool isXonXoff = (m_dwFlowControl & _FLOW_XONXOFF) != 0;
    dcb.fRtsControl = isHandshake ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
    dcb.fOutxCtsFlow = isHandshake;
    dcb.fOutX = isXonXoff;
    dcb.fInX = isXonXoff;
}

// A read returns at once with what is there; a write takes the time it takes.
BOOL CVSerial::ResetTimeouts() {
    COMMTIMEOUTS timeouts = {};
    timeouts.ReadIntervalTimeout = MAXDWORD;
    if (!SetCommTimeouts(m_hPort, &timeouts))
        return ReportLastError("CVSerial::Reset() - SetCommTimeouts()");
    return TRUE;
}
