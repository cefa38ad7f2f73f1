#include "platform/comm/CommWaiters.h"

namespace platform {

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
