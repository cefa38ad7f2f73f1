// What CVSerial offers to those who block: handles, and the wait for everything to be sent. That is
// woken for every chunk, but by nothing when the driver's own queue runs empty, so it then looks
// again after the time that the line needs for what is left.
#include "CORE/VXSerial/Lib/Serial.h"

#include "platform/Error.h"
#include "platform/objects/Deadline.h"

#include <algorithm>

namespace {

// Start bit, eight data bits and stop bit.
constexpr std::uint64_t kBitsPerByte = 10;

DWORD ToMilliseconds(std::uint64_t milliseconds) {
    return static_cast<DWORD>(std::min<std::uint64_t>(milliseconds, INFINITE - 1));
}

// The time that bytes need on the wire.
DWORD TransmitTime(DWORD count, DWORD baudRate) {
    return baudRate == 0 ? 0 : ToMilliseconds(count * kBitsPerByte * 1000 / baudRate);
}

} // namespace

HANDLE CVSerial::GetReceiveHandle() {
    return IsOpen() ? m_hPort.load() : nullptr;
}

HANDLE CVSerial::GetHangupHandle() {
    return IsOpen() ? platform::GetCommHangupHandle(m_hPort) : nullptr;
}

HANDLE CVSerial::GetProgressEvent() {
    return m_hProgressEvent;
}

// Asked often, so the device is asked only once it is known to have hung up: that is cheap, and the
// errors of a line that works are left for Read to report.
BOOL CVSerial::IsDeviceGone() {
    const HANDLE hangup = GetHangupHandle();
    if (!hangup || WaitForSingleObject(hangup, 0) != WAIT_OBJECT_0)
        return FALSE;
    return !ClearCommError(m_hPort, nullptr, nullptr) &&
           GetLastError() == ERROR_DEVICE_NOT_CONNECTED;
}

BOOL CVSerial::Drain(DWORD dwNoProgress) {
    const HANDLE handles[] = {GetHangupHandle(), GetProgressEvent()};
    if (!handles[0] || !handles[1])
        return FALSE;
    const DWORD baudRate = GetLineRate();
    platform::CDeadline patience(dwNoProgress);
    DWORD left = MAXDWORD;
    DWORD inHand = 0;
    DWORD pause = 0;
    for (;;) {
        Pending pending = {};
        if (WaitForSingleObject(handles[0], 0) == WAIT_OBJECT_0 || !CountPending(pending))
            return FALSE;
        const DWORD ours = pending.buffered + pending.inHand;
        if (ours + pending.driver == 0)
            return TRUE;
        // Some drivers count what they send by the piece, for each of which a slow line takes long.
        if (ours + pending.driver < left || pending.inHand != inHand) {
            const DWORD piece = TransmitTime(pending.inHand, baudRate);
            patience = platform::CDeadline(ToMilliseconds(std::uint64_t{dwNoProgress} + piece));
            pause = 0;
        }
        left = ours + pending.driver;
        inHand = pending.inHand;
        const DWORD remaining = patience.Remaining();
        if (remaining == 0)
            return FALSE;
        // Nothing is signalled when the driver's own queue runs empty: the looks at it are ever
        // rarer while nothing moves.
        pause = std::max({ToMilliseconds(std::uint64_t{pause} * 2),
                          TransmitTime(pending.driver, baudRate), DWORD{1}});
        if (WaitForMultipleObjects(ours == 0 ? 1 : 2, handles, FALSE,
                                   ours == 0 ? std::min(pause, remaining) : remaining) ==
            WAIT_FAILED)
            return FALSE;
    }
}

// Counts what has been accepted for sending and has not left; bytes on their way from one place to
// the next may be counted in both. False when the port does not tell.
bool CVSerial::CountPending(Pending& pending) {
    {
        const CLock handOver(m_HandOverCritSec);
        m_cvTXBuffer.GetBufferStatus(nullptr, &pending.buffered, nullptr);
        pending.inHand = m_dwInHand;
    }
    COMSTAT status = {};
    if (!ClearCommError(m_hPort, nullptr, &status))
        return false;
    pending.driver = status.cbOutQue;
    return true;
}

// The baud rate in force; 0 when it is not known.
DWORD CVSerial::GetLineRate() {
    const CLock lock(m_CritSec);
    DCB dcb = {};
    if (m_dwBaudRate == 0)
        GetCommState(m_hPort, &dcb);
    return m_dwBaudRate != 0 ? m_dwBaudRate : dcb.BaudRate;
}
