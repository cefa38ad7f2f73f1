// The one loop in which this layer blocks: a wait for up to MAXIMUM_WAIT_OBJECTS objects with a
// deadline, during which the thread's companion is served, its timer is run and its termination is
// noticed.
//
// Lives on the waiting thread's stack for one wait; the caller keeps the objects alive. It neither
// allocates nor holds a lock while it blocks. Nothing outside platform/ includes this header.
#pragma once

#include "platform/Wait.h"
#include "platform/objects/Deadline.h"
#include "platform/objects/HandleObject.h"

#include <poll.h>

namespace platform {

class CWaitLoop {
  public:
    // Handles, when given, are those that name the objects: the wait then fails once one of them is
    // found closed.
    CWaitLoop(CHandleObject* const* objects, DWORD count, DWORD milliseconds,
              const HANDLE* handles = nullptr);

    // WAIT_OBJECT_0 plus the lowest index that was acquired, WAIT_TIMEOUT, or WAIT_FAILED with
    // ERROR_OPERATION_ABORTED (the thread was terminated, or the end asked for, see
    // platform/objects/EndRequest.h) or ERROR_INVALID_HANDLE (closed meanwhile).
    DWORD Run();

    // Serves the companion once and lets it do what it has to do; does not wait.
    void Serve();

  private:
    enum class Turn { Done, Again };

    Turn TakeTurn();
    static bool IsOver(std::int64_t untilEnd);
    bool AcquireFirst();
    bool AcquireAny();
    std::int64_t PatienceOf(std::int64_t remaining) const;
    int Poll(std::int64_t patience);
    void ServeCompanion();
    bool LetCompanionWork();
    bool HandlesAreOpen() const;
    Turn End(DWORD result);
    Turn Fail(DWORD error);

    static constexpr DWORD kCompanionDescriptors = 2;
    static constexpr DWORD kTerminationDescriptors = 1;
    static constexpr DWORD kEndDescriptors = 1;

    CHandleObject* const* m_objects;
    DWORD m_dwCount;
    const HANDLE* m_handles;
    CDeadline m_deadline;
    DWORD m_dwResult = WAIT_TIMEOUT;
    DWORD m_dwWatched = 0;     // the companion's descriptors, which follow those of the objects
    bool m_bWorkTried = false; // the companion has done what it could since its descriptors changed
    bool m_bWatchesEnd = false;
    pollfd m_polled[MAXIMUM_WAIT_OBJECTS + kCompanionDescriptors + kTerminationDescriptors +
                    kEndDescriptors];
};

} // namespace platform
