// A transfer of a port that is pending: what is left of it, until when, and whom to tell of its
// end.
//
// Owned by the port, one for each direction, and guarded by that direction's lock, but for Left. It
// refers to the caller's OVERLAPPED record and buffer only while it is pending; its end is written
// into the record, where it stays to be asked for.
#pragma once

#include "platform/File.h"
#include "platform/objects/Deadline.h"
#include "platform/objects/HandleObject.h"

#include <atomic>

namespace platform {

class CCommTransfer {
  public:
    // Gets the descriptor by which waits are ended. FALSE with ERROR_TOO_MANY_OPEN_FILES or
    // ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    bool IsPending() const { return m_overlapped != nullptr; }
    bool IsPending(const OVERLAPPED* overlapped) const { return m_overlapped == overlapped; }

    // Begins a transfer of which done bytes have been moved already.
    void Begin(OVERLAPPED* overlapped, DWORD count, DWORD done, DWORD milliseconds);

    DWORD Done() const { return m_dwDone; }
    // 0 when nothing is pending.
    DWORD Left() const { return m_dwLeft; }
    void Advance(DWORD count) {
        m_dwDone += count;
        m_dwLeft -= count;
    }

    // The milliseconds that are left, rounded up; INFINITE without a limit.
    DWORD Remaining() const;

    // Ends the pending transfer, if there is one, with an error code and the bytes moved so far,
    // and wakes those who wait for it.
    void End(DWORD error);

    // Around a wait, which is made without the lock and watches AbortDescriptor.
    void EnterWait() { ++m_nWaiting; }
    void LeaveWait();
    int AbortDescriptor() const { return m_abort.Get(); }

  private:
    OVERLAPPED* m_overlapped = nullptr;
    std::atomic<DWORD> m_dwLeft = 0;
    DWORD m_dwDone = 0;
    CDeadline m_deadline{INFINITE};
    CDescriptor m_abort; // an eventfd
    int m_nWaiting = 0;
    bool m_bSignalled = false; // the eventfd is, for those still in a wait
};

// Stores the end of a transfer in its record, for GetOverlappedResult and the waits for its event.
void RecordTransfer(OVERLAPPED* overlapped, DWORD error, DWORD count);

} // namespace platform
