#include "platform/comm/CommWaiters.h"

#include "platform/Error.h"

#include <sys/epoll.h>

namespace platform {

BOOL CCommWaiters::Create(int device) {
    if (!m_wake.Create())
        return FALSE;
    m_either.Reset(epoll_create1(EPOLL_CLOEXEC));
    if (!m_either)
        return FailWithErrno();
    for (const int descriptor : {device, m_wake.Descriptor()}) {
        epoll_event event{};
        event.events = EPOLLIN;
        if (epoll_ctl(m_either.Get(), EPOLL_CTL_ADD, descriptor, &event) != 0)
            return FailWithErrno();
    }
    return TRUE;
}

void CCommWaiters::Leave() {
    if (--m_nWaiting > 0 || !m_bWoken)
        return;
    m_wake.Clear();
    m_bWoken = false;
}

void CCommWaiters::Wake() {
    if (m_nWaiting == 0 || m_bWoken)
        return;
    m_wake.Signal();
    m_bWoken = true;
}

} // namespace platform
