#include "CORE/VXSerial/Lib/CommBuffer.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

#include <algorithm>
#include <cstring>

CVCommBuffer::CVCommBuffer()
    : m_hDataEvent(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_hSpaceEvent(CreateEventA(nullptr, TRUE, TRUE, nullptr)) {
    DEBUG_ASSERT(m_hDataEvent);
    DEBUG_ASSERT(m_hSpaceEvent);
    DEBUG_VERIFY(SetBufferSize(DEFAULT_BUFFER_SIZE));
}

CVCommBuffer::~CVCommBuffer() {
    const CLock lock(m_CritSec);
    m_pBuffer.reset();
}

DWORD CVCommBuffer::SetBufferSize(DWORD dwBufferSize) {
    const CLock lock(m_CritSec);
    if (dwBufferSize == m_dwBufferSize || dwBufferSize == 0)
        return m_dwBufferSize;
    if (m_dwDataCount > dwBufferSize) {
        DebugReport("CVCommBuffer::SetBufferSize() - The new buffer size is too small to hold the "
                    "existing buffer data");
        dwBufferSize = m_dwDataCount;
    }
    auto* const block = static_cast<BYTE*>(std::realloc(m_pBuffer.get(), dwBufferSize));
    if (!block) {
        DebugReport(
            "CVCommBuffer::SetBufferSize() - Memory allocation failure - GetLastError = %ld",
            static_cast<long>(GetLastError()));
        return m_dwBufferSize;
    }
    static_cast<void>(m_pBuffer.release()); // the former block is the new one's by now, or gone
    m_pBuffer.reset(block);
    m_dwBufferSize = dwBufferSize;
    return m_dwBufferSize;
}

void CVCommBuffer::GetBufferStatus(LPDWORD lpSize, LPDWORD lpCount, LPDWORD lpFree) {
    const CLock lock(m_CritSec);
    if (lpSize)
        *lpSize = m_dwBufferSize;
    if (lpCount)
        *lpCount = m_dwDataCount;
    if (lpFree)
        *lpFree = m_dwBufferSize - m_dwDataCount;
}

DWORD CVCommBuffer::Write(LPCVOID lpBuffer, DWORD dwCount) {
    DEBUG_ASSERT(lpBuffer);
    const CLock lock(m_CritSec);
    dwCount = std::min(lpBuffer ? dwCount : 0, m_dwBufferSize - m_dwDataCount);
    if (dwCount != 0) {
        std::memcpy(m_pBuffer.get() + m_dwDataCount, lpBuffer, dwCount);
        m_dwDataCount += dwCount;
        DEBUG_VERIFY(SetEvent(m_hDataEvent));
    }
    // Also when nothing was stored: a shrink to the bytes held leaves a full buffer whose space
    // event is still set, and a writer that waits for it would come straight back.
    if (m_dwDataCount == m_dwBufferSize)
        DEBUG_VERIFY(ResetEvent(m_hSpaceEvent));
    return dwCount;
}

DWORD CVCommBuffer::Read(LPVOID lpBuffer, DWORD dwCount, BOOL bRemove) {
    DEBUG_ASSERT(lpBuffer);
    const CLock lock(m_CritSec);
    dwCount = std::min(lpBuffer ? dwCount : 0, m_dwDataCount);
    if (dwCount == 0)
        return 0;
    std::memcpy(lpBuffer, m_pBuffer.get(), dwCount);
    if (bRemove)
        DEBUG_VERIFY(ClearBuffer(dwCount) == dwCount);
    return dwCount;
}

DWORD CVCommBuffer::ClearBuffer(DWORD dwCount) {
    const CLock lock(m_CritSec);
    dwCount = std::min(dwCount, m_dwDataCount);
    if (dwCount == 0)
        return 0;
    m_dwDataCount -= dwCount;
    if (m_dwDataCount != 0)
        std::memmove(m_pBuffer.get(), m_pBuffer.get() + dwCount, m_dwDataCount);
    else
        DEBUG_VERIFY(ResetEvent(m_hDataEvent));
    DEBUG_VERIFY(SetEvent(m_hSpaceEvent));
    return dwCount;
}
