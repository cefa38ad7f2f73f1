#include "platform/objects/EventObject.h"

#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/MakeObject.h"

#include <sys/eventfd.h>

namespace platform {

BOOL CEventObject::Create(bool signalled) {
    m_mirror.Reset(eventfd(signalled ? 1 : 0, EFD_CLOEXEC | EFD_NONBLOCK));
    m_bSignalled = signalled;
    return m_mirror ? TRUE : FailWithErrno();
}

void CEventObject::Set() {
    // A compare-exchange and no plain load: whoever consumes the signal that is found here must see
    // what this thread wrote before it called.
    bool expected = true;
    if (m_bSignalled.compare_exchange_strong(expected, true))
        return;
    const std::lock_guard lock(m_mutex);
    if (!m_bSignalled.exchange(true))
        Mirror(true);
}

void CEventObject::Reset() {
    if (!m_bSignalled.load())
        return;
    const std::lock_guard lock(m_mutex);
    if (m_bSignalled.exchange(false))
        Mirror(false);
}

bool CEventObject::TryAcquire(short events) {
    if (m_bManualReset)
        return m_bSignalled.load(std::memory_order_acquire);
    // With the eventfd readable the lock is taken even for a clear flag: another thread is between
    // its two steps, and polling again before it has finished would only spin.
    if (events == 0 && !m_bSignalled.load())
        return false;
    const std::lock_guard lock(m_mutex);
    if (!m_bSignalled.exchange(false))
        return false;
    Mirror(false);
    return true;
}

BOOL CEventObject::Close() {
    const std::lock_guard lock(m_mutex);
    m_bClosed = true;
    if (!m_bSignalled)
        eventfd_write(m_mirror.Get(), 1);
    return TRUE;
}

void CEventObject::Mirror(bool signalled) {
    if (m_bClosed)
        return;
    eventfd_t count = 0;
    if (signalled)
        eventfd_write(m_mirror.Get(), 1);
    else
        eventfd_read(m_mirror.Get(), &count);
}

} // namespace platform
