#include "platform/comm/CommTransfer.h"

#include "platform/Error.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace platform {

BOOL CCommTransfer::Create() {
    m_abort.Reset(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    return m_abort ? TRUE : FailWithErrno();
}

void CCommTransfer::Begin(OVERLAPPED* overlapped, DWORD count, DWORD done, DWORD milliseconds) {
    m_overlapped = overlapped;
    m_dwLeft = count - done;
    m_dwDone = done;
    m_deadline = CDeadline(milliseconds);
    overlapped->Internal = ERROR_IO_PENDING;
    overlapped->InternalHigh = done;
    if (overlapped->hEvent != nullptr)
        ResetEvent(overlapped->hEvent);
}

DWORD CCommTransfer::Remaining() const {
    const std::int64_t remaining = m_deadline.Remaining();
    if (remaining == CDeadline::NEVER)
        return INFINITE;
    const std::int64_t rounded =
        (remaining + NANOSECONDS_PER_MILLISECOND - 1) / NANOSECONDS_PER_MILLISECOND;
    return static_cast<DWORD>(std::min<std::int64_t>(rounded, INFINITE - 1));
}

void CCommTransfer::End(DWORD error) {
    if (!IsPending())
        return;
    m_dwLeft = 0;
    RecordTransfer(std::exchange(m_overlapped, nullptr), error, m_dwDone);
    if (m_nWaiting == 0 || m_bSignalled)
        return;
    m_bSignalled = true;
    eventfd_write(m_abort.Get(), 1);
}

void CCommTransfer::LeaveWait() {
    if (--m_nWaiting > 0 || !m_bSignalled)
        return;
    eventfd_t count = 0;
    eventfd_read(m_abort.Get(), &count);
    m_bSignalled = false;
}

void RecordTransfer(OVERLAPPED* overlapped, DWORD error, DWORD count) {
    overlapped->Internal = error;
    overlapped->InternalHigh = count;
    if (overlapped->hEvent != nullptr)
        SetEvent(overlapped->hEvent);
}

} // namespace platform
