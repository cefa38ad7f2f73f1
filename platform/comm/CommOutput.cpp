// No thread of this layer's own ever writes. What the driver does not take at once stays in the
// caller's buffer until somebody asks for the result: that call offers the rest each time the
// driver has room again. A write without a record asks for its own result before it returns.
#include "platform/comm/CommOutput.h"

#include "platform/Error.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/TransferRecord.h"

#include <utility>

namespace platform {

BOOL CCommOutput::Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) {
    OVERLAPPED own{};
    {
        const std::lock_guard lock(m_mutex);
        if (m_bClosed)
            return FailWith(ERROR_INVALID_HANDLE);
        if (m_overlapped)
            return FailWith(ERROR_INVALID_PARAMETER);
        if (!HandOver(static_cast<const BYTE*>(buffer), count))
            return FALSE;
        if (m_dwLeft == 0) {
            *written = count;
            if (overlapped)
                EndTransfer(*overlapped, ERROR_SUCCESS, count);
            return TRUE;
        }
        m_overlapped = overlapped ? overlapped : &own;
        m_dwCount = count;
        BeginTransfer(*m_overlapped);
    }
    if (overlapped)
        return FailWith(ERROR_IO_PENDING);
    Finish(&own, TRUE);
    return ResultOf(own, written);
}

// Offers the driver these bytes, of which it leaves some or all.
BOOL CCommOutput::HandOver(const BYTE* bytes, DWORD count) {
    if (m_driver.IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    const int sent = m_driver.Send(bytes, count);
    if (sent < 0)
        return FALSE;
    ++m_dwWrites;
    m_source = bytes + sent;
    m_dwLeft = count - static_cast<DWORD>(sent);
    return TRUE;
}

bool CCommOutput::Finish(const OVERLAPPED* overlapped, BOOL wait) {
    std::unique_lock lock(m_mutex);
    while (m_overlapped == overlapped) {
        if (!HandOver(m_source, m_dwLeft))
            End(GetLastError());
        else if (m_dwLeft == 0)
            End(ERROR_SUCCESS);
        else if (wait)
            WaitForProgress(lock, overlapped);
        else
            return false;
    }
    return true;
}

void CCommOutput::WaitForProgress(std::unique_lock<std::mutex>& lock,
                                  const OVERLAPPED* overlapped) {
    m_waiters.Enter();
    lock.unlock();
    const int events =
        WaitForDescriptor(m_driver.Descriptor(), POLLOUT, INFINITE, m_waiters.WakeDescriptor());
    const DWORD error = events < 0 ? GetLastError() : ERROR_SUCCESS;
    lock.lock();
    m_waiters.Leave();
    if (events < 0 && m_overlapped == overlapped)
        End(error);
    if (events > 0 && (events & (POLLHUP | POLLERR)) != 0)
        m_driver.SetGone();
}

void CCommOutput::End(DWORD error) {
    if (!m_overlapped)
        return;
    const DWORD left = m_dwLeft.exchange(0);
    EndTransfer(*std::exchange(m_overlapped, nullptr), error, m_dwCount - left);
    m_waiters.Wake();
}

BOOL CCommOutput::Purge(DWORD flags) {
    const std::lock_guard lock(m_mutex);
    if (flags & PURGE_TXABORT)
        End(ERROR_OPERATION_ABORTED);
    return flags & PURGE_TXCLEAR ? m_driver.Flush(TCOFLUSH) : TRUE;
}

void CCommOutput::Close() {
    const std::lock_guard lock(m_mutex);
    m_bClosed = true;
    End(ERROR_OPERATION_ABORTED);
}

BOOL CCommOutput::CountUnsent(DWORD& count) {
    count = m_dwLeft;
    const DWORD writes = m_dwWrites;
    if (writes == m_dwDrained)
        return TRUE;
    DWORD waiting = 0;
    if (!m_driver.CountOutput(waiting))
        return FALSE;
    if (waiting == 0)
        m_dwDrained = writes;
    count += waiting;
    return TRUE;
}

} // namespace platform
