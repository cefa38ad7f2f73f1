// The wait for comm events of one port: the mask, the pending wait, and what was last seen of the
// lines and the error counters. Nothing outside platform/ includes this header.
//
// Owned by the port. Any thread may call any operation; the lock is not held while a wait blocks,
// and the port's receive lock is taken after it, never before. The operations have the results and
// errors of the calls in platform/CommEvents.h.
#pragma once

#include "platform/CommEvents.h"
#include "platform/comm/CommLineWatch.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace platform {

class CCommPort;

class CCommEventWait {
  public:
    explicit CCommEventWait(CCommPort& port) : m_port(port) {}

    // FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    BOOL SetMask(DWORD mask);
    BOOL Start(DWORD& events, OVERLAPPED* overlapped);

    // Carries the wait on if it is this record's; false when it is not finished and must not be
    // waited for. By one thread at a time.
    bool Finish(const OVERLAPPED* overlapped, BOOL wait);

    // Ends the pending wait, and lets none begin.
    void Close();

    // Bytes have gone from the driver into the port's queue, where poll() does not see them. Takes
    // no lock: the caller holds the port's receive lock.
    void NoteReceived();

  private:
    bool IsPending(const OVERLAPPED* overlapped) const { return m_overlapped == overlapped; }
    void Look();
    DWORD FindEvents(DWORD received);
    bool HasCarrierMoved();
    bool HaveErrorsCome();
    void Fail(DWORD error);
    void End(DWORD error, DWORD events);
    void WatchLines();
    DWORD Patience();
    void Block(std::unique_lock<std::mutex>& lock, const OVERLAPPED* overlapped);

    CCommPort& m_port;
    std::shared_ptr<CCommWake> m_wake;
    // The pending wait's record. Changed under the lock; looked at without it by those to whom no
    // other value matters than their own, and null.
    std::atomic<OVERLAPPED*> m_overlapped = nullptr;

    std::mutex m_mutex; // guards what follows
    DWORD m_dwMask = 0;
    DWORD* m_events = nullptr; // where the pending wait's result goes
    bool m_bLooked = false;    // already, by the call that began the wait
    bool m_bLookSoon = false;  // a line may have moved unnoticed just now
    bool m_bLossTold = false;  // a wait has been failed because the device is gone
    bool m_bClosed = false;
    bool m_bCarrier = false;             // as last reported
    bool m_bCounts = false;              // the driver counts errors
    serial_icounter_struct m_counters{}; // as last reported
    CCommLineWatch m_lineWatch;
};

} // namespace platform
