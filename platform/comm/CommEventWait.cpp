// Bytes show on the device's own descriptor, but lines and error counters do not: a thread that
// sleeps in the driver's wait for a line wakes this one, and where the driver has no such wait the
// lines are read at intervals. Every waking looks at everything; only a difference ends the wait.
#include "platform/comm/CommEventWait.h"

#include "platform/Error.h"
#include "platform/comm/CommErrors.h"
#include "platform/comm/CommPort.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/MakeObject.h"
#include "platform/objects/TransferRecord.h"

#include <sys/ioctl.h>

#include <utility>

namespace platform {
namespace {

constexpr DWORD kKnownEvents = EV_RXCHAR | EV_RLSD | EV_ERR;

// How often lines are read that nobody tells of.
constexpr DWORD kLinesInterval = 100;
// How often they are read although the driver tells: some have the call and no interrupt behind it,
// and a break comes with neither a byte nor a line.
constexpr DWORD kBackupInterval = 1000;

} // namespace

BOOL CCommEventWait::Create() {
    m_wake = MakeObject<CCommWake>();
    return m_wake && m_wake->Create();
}

BOOL CCommEventWait::SetMask(DWORD mask) {
    if ((mask & ~kKnownEvents) != 0)
        return FailWith(ERROR_INVALID_PARAMETER);
    const std::lock_guard lock(m_mutex);
    if (m_bClosed)
        return FailWith(ERROR_INVALID_HANDLE);
    End(ERROR_SUCCESS, 0);
    const DWORD added = mask & ~m_dwMask;
    m_dwMask = mask;
    if (mask & EV_RLSD)
        HasCarrierMoved();
    else
        m_lineWatch.Stop();
    if (added & EV_ERR)
        m_bCounts = m_port.Lines()->GetCounters(m_counters);
    return TRUE;
}

BOOL CCommEventWait::Start(DWORD& events, OVERLAPPED* overlapped) {
    OVERLAPPED own{};
    OVERLAPPED& record = overlapped ? *overlapped : own;
    {
        const std::lock_guard lock(m_mutex);
        events = 0;
        if (m_bClosed)
            return FailWith(ERROR_INVALID_HANDLE);
        if (m_overlapped)
            return FailWith(ERROR_INVALID_PARAMETER);
        m_events = &events;
        BeginTransfer(record);
        m_overlapped = &record;
        m_wake->Clear();
        WatchLines();
        Look();
        m_bLooked = true;
        if (overlapped && IsPending(overlapped))
            return FailWith(ERROR_IO_PENDING);
    }
    Finish(&record, TRUE);
    const DWORD error = static_cast<DWORD>(record.Internal);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
}

bool CCommEventWait::Finish(const OVERLAPPED* overlapped, BOOL wait) {
    // Most calls are for another transfer, whose end must not wait for a slow driver's lines.
    if (!IsPending(overlapped))
        return true;
    std::unique_lock lock(m_mutex);
    while (IsPending(overlapped)) {
        if (!std::exchange(m_bLooked, false)) {
            m_wake->Clear();
            Look();
        }
        if (!IsPending(overlapped))
            return true;
        if (!wait)
            return false;
        Block(lock, overlapped);
    }
    return true;
}

void CCommEventWait::Close() {
    const std::lock_guard lock(m_mutex);
    m_bClosed = true;
    End(ERROR_OPERATION_ABORTED, 0);
    m_lineWatch.Stop();
}

void CCommEventWait::NoteReceived() {
    if (m_overlapped)
        m_wake->Signal();
}

// Ends the pending wait if there is a reason to.
void CCommEventWait::Look() {
    if (m_dwMask == 0)
        return End(ERROR_SUCCESS, 0);
    DWORD received = 0;
    if ((m_dwMask & EV_RXCHAR) && !m_port.CountReceived(received))
        return Fail(GetLastError());
    if (m_port.IsGone() && received == 0)
        return Fail(ERROR_DEVICE_NOT_CONNECTED);
    const DWORD events = FindEvents(received);
    if (events != 0)
        End(ERROR_SUCCESS, events);
}

DWORD CCommEventWait::FindEvents(DWORD received) {
    DWORD events = received > 0 ? EV_RXCHAR : 0;
    if ((m_dwMask & EV_RLSD) && HasCarrierMoved())
        events |= EV_RLSD;
    if ((m_dwMask & EV_ERR) && HaveErrorsCome())
        events |= EV_ERR;
    return events;
}

bool CCommEventWait::HasCarrierMoved() {
    int lines = 0;
    if (!m_port.Lines()->GetLines(lines))
        return false;
    const bool isOn = (lines & TIOCM_CAR) != 0;
    return std::exchange(m_bCarrier, isOn) != isOn;
}

bool CCommEventWait::HaveErrorsCome() {
    serial_icounter_struct now = m_counters;
    if (!m_bCounts || !m_port.Lines()->GetCounters(now))
        return false;
    return ErrorsBetween(std::exchange(m_counters, now), now) != 0;
}

void CCommEventWait::Fail(DWORD error) {
    if (error == ERROR_DEVICE_NOT_CONNECTED && std::exchange(m_bLossTold, true))
        return;
    End(error, 0);
}

void CCommEventWait::End(DWORD error, DWORD events) {
    if (!m_overlapped)
        return;
    *m_events = events;
    m_bLooked = false;
    EndTransfer(*m_overlapped, error, 0);
    m_overlapped = nullptr;
    m_wake->Signal();
}

void CCommEventWait::WatchLines() {
    const std::shared_ptr<ICommLines> lines = m_port.Lines();
    if ((m_dwMask & EV_RLSD) && lines->HasLines() && !m_port.IsGone())
        m_bLookSoon = m_lineWatch.Start(lines, m_wake) || m_bLookSoon;
}

// How long the wait may block before the lines and counters must be read. While the line watch gets
// ready, and after each move, a line may move without its notice: then it is once the shorter time.
DWORD CCommEventWait::Patience() {
    const bool hasErrors = (m_dwMask & EV_ERR) != 0 && m_bCounts;
    if ((m_dwMask & EV_RLSD) == 0 || !m_port.Lines()->HasLines())
        return hasErrors ? kBackupInterval : INFINITE;
    const bool isToldOf = m_lineWatch.IsWatching() && !std::exchange(m_bLookSoon, false);
    return isToldOf ? kBackupInterval : kLinesInterval;
}

void CCommEventWait::Block(std::unique_lock<std::mutex>& lock, const OVERLAPPED* overlapped) {
    // A device that is gone shows nothing else any more, and that all the time.
    const bool isLossTold = m_bLossTold;
    const int descriptor = isLossTold ? m_wake->Descriptor() : m_port.Driver().Descriptor();
    const bool takesInput = isLossTold || (m_dwMask & EV_RXCHAR) != 0;
    const DWORD limit = isLossTold ? INFINITE : Patience();
    lock.unlock();
    const int shown = WaitForDescriptor(descriptor, takesInput ? POLLIN : 0, limit,
                                        isLossTold ? -1 : m_wake->Descriptor());
    const DWORD error = shown < 0 ? GetLastError() : ERROR_SUCCESS;
    lock.lock();
    if (shown < 0 && IsPending(overlapped))
        return End(error, 0);
    if (!isLossTold && (shown & (POLLHUP | POLLERR)) != 0)
        m_port.Driver().SetGone();
    m_bLookSoon = m_bLookSoon || (shown & POLLPRI) != 0;
}

} // namespace platform
