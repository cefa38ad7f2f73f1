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
    platform::CDeadline deadline(dwNoProgress);
    Pending former = {MAXDWORD, 0, 0};
    DWORD pause = 0;
    for (;;) {
        Pending pending = {};
        if (WaitForSingleObject(handles[0], 0) == WAIT_OBJECT_0 || !CountPending(pending))
            return FALSE;
        if (pending.Count() == 0)
            return TRUE;
        if (pending.Count() < former.Count() || pending.inHand != former.inHand) {
            // Some drivers count what they send by the piece, for each of which a slow line takes
            // long.
            const DWORD extension = TransmitTime(pending.inHand, baudRate);
            deadline = platform::CDeadline(ToMilliseconds(std::uint64_t{dwNoProgress} + extension));
            pause = 0;
        }
        former = pending;
        const DWORD remaining = deadline.Remaining();
        if (remaining == 0)
            return FALSE;
        // The driver's own queue is looked at ever less often while nothing moves.
        const bool isOurs = pending.driver != pending.Count();
        pause =
            isOurs ? 0 : std::max({pause * 2, TransmitTime(pending.driver, baudRate), DWORD{1}});
        const DWORD longest = isOurs ? remaining : std::min(pause, remaining);
        if (WaitForMultipleObjects(isOurs ? 2 : 1, handles, FALSE, longest) == WAIT_FAILED)
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
