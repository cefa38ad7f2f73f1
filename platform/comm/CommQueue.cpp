#include "platform/comm/CommQueue.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace platform {

bool CCommQueue::Resize(DWORD size) {
    if (!Allocate(std::max(size, Count())))
        return false;
    m_dwSize = size;
    return true;
}

bool CCommQueue::Extend() {
    return m_dwCapacity < kMostKept &&
           Allocate(std::min(std::max<DWORD>(m_dwCapacity, 1) * 2, kMostKept));
}

bool CCommQueue::Allocate(DWORD capacity) {
    const DWORD held = Count();
    std::unique_ptr<BYTE[]> bytes(new (std::nothrow) BYTE[capacity]);
    if (!bytes)
        return false;
    if (held > 0)
        std::memcpy(bytes.get(), m_bytes.get() + m_dwBegin, held);
    m_bytes = std::move(bytes);
    m_dwCapacity = capacity;
    m_dwBegin = 0;
    m_dwEnd = held;
    return true;
}

void CCommQueue::Clear() {
    m_dwBegin = m_dwEnd = 0;
    if (m_dwCapacity > m_dwSize)
        Allocate(m_dwSize);
}

DWORD CCommQueue::Take(void* buffer, DWORD count) {
    const DWORD taken = std::min(count, Count());
    if (taken == 0)
        return 0;
    std::memcpy(buffer, m_bytes.get() + m_dwBegin, taken);
    m_dwBegin += taken;
    if (IsEmpty())
        Clear();
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
