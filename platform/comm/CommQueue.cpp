#include "platform/comm/CommQueue.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace platform {

bool CCommQueue::Resize(DWORD size) {
    const DWORD held = Count();
    std::unique_ptr<BYTE[]> bytes(new (std::nothrow) BYTE[std::max(size, held)]);
    if (!bytes)
        return false;
    if (held > 0)
        std::memcpy(bytes.get(), m_bytes.get() + m_dwBegin, held);
    m_bytes = std::move(bytes);
    m_dwSize = size;
    m_dwBegin = 0;
    m_dwEnd = held;
    return true;
}

DWORD CCommQueue::Take(void* buffer, DWORD count) {
    const DWORD taken = std::min(count, Count());
    if (taken == 0)
        return 0;
    std::memcpy(buffer, m_bytes.get() + m_dwBegin, taken);
    m_dwBegin += taken;
    return taken;
}

BYTE* CCommQueue::Room() {
    if (m_dwBegin > 0) {
        std::memmove(m_bytes.get(), m_bytes.get() + m_dwBegin, Count());
        m_dwEnd -= m_dwBegin;
        m_dwBegin = 0;
    }
    return m_bytes.get() + m_dwEnd;
}

} // namespace platform
