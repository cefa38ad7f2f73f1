// CHandleObject: the base of every object that a handle can name. Owned by the handle table and by
// the calls in progress on it; any thread may call any operation. Nothing outside platform/ and
// console/ includes this header.
#pragma once

#include "platform/Types.h"

#include <poll.h>

namespace platform {

// Something a handle names. A wait polls WaitDescriptor() for WaitEvents() and then asks
// TryAcquire, in the order of the handles. Objects are shared: a call in progress on another thread
// keeps the object alive after its handle was closed.
class CHandleObject {
  public:
    virtual ~CHandleObject() = default;
    CHandleObject(const CHandleObject&) = delete;
    CHandleObject& operator=(const CHandleObject&) = delete;

    // The descriptor to poll; -1 when the object cannot be waited for.
    virtual int WaitDescriptor() const { return -1; }
    virtual short WaitEvents() const { return POLLIN; }

    // True when the object is known to be signalled without asking the system: the wait then does
    // not block, and a wait for this object alone makes no system call.
    virtual bool IsReady() const { return false; }

    // When the object becomes ready by itself: milliseconds from now, -1 for never.
    virtual int ReadyInMilliseconds() const { return -1; }

    // Around each wait in which the object takes part, by the waiting thread: for an object that
    // can become ready without a trace on its descriptor unless it knows that somebody waits.
    virtual void BeginWait() {}
    virtual void EndWait() {}

    // Satisfies a wait if the object is signalled; events are what poll() said of its descriptor (0
    // when IsReady was true and nothing was polled). An auto-reset event is consumed here, by one
    // caller only.
    virtual bool TryAcquire(short events) = 0;

    // CloseHandle calls this once, after the handle is out of the table: ends pending transfers,
    // gives the system's resource back. FALSE with the last error set when that failed.
    virtual BOOL Close() { return TRUE; }

  protected:
    CHandleObject() = default;
};

} // namespace platform
