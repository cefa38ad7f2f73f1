// The receive queue of a port: bytes that one large read took from the driver, handed out in
// whatever pieces the reader asks for.
//
// Owned by the port and guarded by its receive lock. It is normally refilled when it is empty, so
// its bytes are hardly ever moved. While nobody reads it can be made larger than it was asked to
// be; it is as large as before once it has run empty.
#pragma once

#include "platform/Types.h"

#include <memory>

namespace platform {

class CCommQueue {
  public:
    // Makes room for that many bytes, at least for those it holds. False when there is no memory;
    // the queue is then unchanged.
    bool Resize(DWORD size);

    // The size that Resize was last asked for.
    DWORD Size() const { return m_dwSize; }
    DWORD Count() const { return m_dwEnd - m_dwBegin; }
    // Makes the queue larger than its size, up to kMostKept bytes. False when it is as large as
    // that already, or there is no memory.
    bool Extend();
    static constexpr DWORD kMostKept = 1 << 20;

    bool IsEmpty() const { return m_dwBegin == m_dwEnd; }

    // Takes up to count bytes out; returns how many.
    DWORD Take(void* buffer, DWORD count);

    void Clear();

    // How many bytes more it may hold.
    DWORD Free() const { return m_dwCapacity - Count(); }
    // Where the next Free() bytes belong; held bytes are moved out of the way.
    BYTE* Room();
    // Says how many were put there.
    void Added(DWORD count) { m_dwEnd += count; }

  private:
    bool Allocate(DWORD capacity);

    std::unique_ptr<BYTE[]> m_bytes;
    DWORD m_dwSize = 0;
    DWORD m_dwCapacity = 0;
    DWORD m_dwBegin = 0;
    DWORD m_dwEnd = 0;
};

} // namespace platform
