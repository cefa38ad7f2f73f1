// CVCommBuffer: the transmit buffer of a serial port, a bounded first-in, first-out byte store.
//
// Callers append and the port's write thread takes out; two manual-reset events tell the two sides
// when there are bytes and when there is space. The store is linear: the oldest byte is always at
// the start of the block. Any thread may call any operation; each one excludes the others for its
// whole duration, none ever waits for bytes or space, and only SetBufferSize allocates. Owned by
// its port.
//
// The data event is set by every Write that stored something and reset by a ClearBuffer that leaves
// nothing. The space event is reset by a Write that leaves, or finds, the buffer full and set by
// every ClearBuffer that removed something. SetBufferSize touches neither.
#pragma once

#include "common/CriticalSection.h"
#include "common/UniqueHandle.h"

#include <cstdlib>
#include <memory>

class CVCommBuffer {
  public:
    static constexpr DWORD DEFAULT_BUFFER_SIZE = 4096;
    static constexpr DWORD kAllBytes = 0xFFFFFFFF;

    // A buffer of DEFAULT_BUFFER_SIZE bytes; failures are reported.
    CVCommBuffer();
    ~CVCommBuffer();
    CVCommBuffer(const CVCommBuffer&) = delete;
    CVCommBuffer& operator=(const CVCommBuffer&) = delete;

    // Changes the capacity and keeps the bytes; to less than the bytes held means to exactly those.
    // 0 is no capacity: it changes nothing. Returns the capacity now in force: not the one asked
    // for when there was no memory (reported).
    DWORD SetBufferSize(DWORD dwBufferSize);

    // Stores the capacity, the bytes held and the free bytes; null pointers are skipped.
    void GetBufferStatus(LPDWORD lpSize, LPDWORD lpCount, LPDWORD lpFree);

    // Appends as many of the bytes as fit; returns how many.
    DWORD Write(LPCVOID lpBuffer, DWORD dwCount);

    // Copies up to dwCount of the oldest bytes, and removes them when bRemove is TRUE; returns how
    // many.
    DWORD Read(LPVOID lpBuffer, DWORD dwCount, BOOL bRemove);

    // Removes up to dwCount of the oldest bytes; returns how many.
    DWORD ClearBuffer(DWORD dwCount);

    // The events, for waits only.
    HANDLE GetDataEvent() const { return m_hDataEvent; }
    HANDLE GetSpaceEvent() const { return m_hSpaceEvent; }

  private:
    struct FreeBlock {
        void operator()(BYTE* block) const { std::free(block); }
    };

    std::unique_ptr<BYTE, FreeBlock> m_pBuffer;
    DWORD m_dwBufferSize = 0;
    DWORD m_dwDataCount = 0;
    CUniqueHandle m_hDataEvent;
    CUniqueHandle m_hSpaceEvent;
    CCriticalSection m_CritSec;
};
