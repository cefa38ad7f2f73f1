// The sending side of a port: what the driver takes at once, and the write that is pending for the
// rest.
//
// Owned by the port. Any thread may call any operation; the lock is not held while a call blocks. A
// pending write refers to the caller's OVERLAPPED record and buffer; its end, by Close at the
// latest, is written into the record. The operations have the arguments, results and errors of the
// calls in platform/Comm.h. Nothing outside platform/ includes this header.
#pragma once

#include "platform/File.h"
#include "platform/comm/CommDriver.h"
#include "platform/comm/CommWaiters.h"

#include <atomic>
#include <mutex>

namespace platform {

class CCommOutput {
  public:
    explicit CCommOutput(CCommDriver& driver) : m_driver(driver) {}

    // FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create() { return m_waiters.Create(); }

    BOOL Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped);

    // Carries the pending write on if it is this record's; false when it is not finished and must
    // not be waited for.
    bool Finish(const OVERLAPPED* overlapped, BOOL wait);

    // Does what the PURGE_TX flags say.
    BOOL Purge(DWORD flags);

    // The bytes of the pending write and of the driver's output queue. Those that are handed over
    // meanwhile may be counted twice, but none is left out.
    BOOL CountUnsent(DWORD& count);

    // Ends the pending write, and lets none begin.
    void Close();

  private:
    BOOL HandOver(const BYTE* bytes, DWORD count);
    void WaitForProgress(std::unique_lock<std::mutex>& lock, const OVERLAPPED* overlapped);
    void End(DWORD error);

    CCommDriver& m_driver;
    std::atomic<DWORD> m_dwLeft = 0;    // of the pending write; 0 when there is none
    std::atomic<DWORD> m_dwWrites = 0;  // counts the calls that have given the driver bytes
    std::atomic<DWORD> m_dwDrained = 0; // that count when the driver was last seen to hold none

    std::mutex m_mutex;                 // guards what follows
    OVERLAPPED* m_overlapped = nullptr; // the pending write's
    DWORD m_dwCount = 0;                // all of its bytes
    const BYTE* m_source = nullptr;     // those that are left
    CCommWaiters m_waiters;             // for its progress; its end wakes them
    bool m_bClosed = false;
};

} // namespace platform
