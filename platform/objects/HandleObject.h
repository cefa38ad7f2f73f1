// What the platform layer's own files share: the base of every object that a handle can name, the
// table of handles, and the hook by which the console is served during waits. Nothing outside
// platform/ and console/ includes this header.
#pragma once

#include "platform/Types.h"

#include <poll.h>

#include <memory>

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

// Puts an object into the table; null when the table is full (ERROR_NOT_ENOUGH_MEMORY).
HANDLE RegisterHandle(std::shared_ptr<CHandleObject> object);

// The same for one of the few objects that live as long as the process: it is found without a lock
// and its handle cannot be closed.
HANDLE RegisterImmortal(CHandleObject& object);

// The object that a handle names; null, with ERROR_INVALID_HANDLE set, for any other value.
std::shared_ptr<CHandleObject> FindHandle(HANDLE handle);

// The same, for a handle of one kind only.
template <class Object> std::shared_ptr<Object> FindHandleOf(HANDLE handle);

// Takes the handle out of the table without closing the object; null as FindHandle.
std::shared_ptr<CHandleObject> RemoveHandle(HANDLE handle);

// Something that must be served while its thread waits: the console, for its gathered output and
// its control events. A thread has at most one.
class IWaitCompanion {
  public:
    // True when there is work that must be done before the thread may block. The wait then first
    // looks, without blocking, whether it is satisfied already.
    virtual bool HasWork() const = 0;

    // Does what can be done now without blocking.
    virtual void DoWork() = 0;

    // Fills in up to two descriptors to watch beside the wait's own; returns how many.
    virtual int Watch(pollfd* descriptors) = 0;

    // Called after poll() with the same descriptors.
    virtual void Serve(const pollfd* descriptors, int count) = 0;

  protected:
    ~IWaitCompanion() = default;
};

// Makes the companion the calling thread's own; null takes it away. The companion must stay alive
// until then.
void SetWaitCompanion(IWaitCompanion* companion);

// Blocks until the descriptor shows one of the events or the time is up (INFINITE: no limit), as
// part of a call that waits on behalf of an object, with the companion served and thread
// termination noticed. Returns poll()'s events (POLLHUP and POLLERR included), 0 when the time is
// up, -1 with the last error set when the thread was terminated. descriptor2, when not -1, is
// watched for POLLIN beside the first and reported as POLLPRI.
int WaitForDescriptor(int descriptor, short events, DWORD milliseconds, int descriptor2 = -1);

// The calling thread's descriptor that shows POLLIN once TerminateThread has named the thread; -1
// on a thread that CreateThread did not start.
int TerminationDescriptor();

// A file descriptor that closes itself.
class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_descriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : m_descriptor(other.Detach()) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept;
    ~CDescriptor() { Reset(); }

    int Get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }
    int Detach();
    // Closes what is held and takes the new one over. Returns 0, or the errno value of the close.
    int Reset(int descriptor = -1);

  private:
    int m_descriptor = -1;
};

void SetInvalidHandleError();

template <class Object> std::shared_ptr<Object> FindHandleOf(HANDLE handle) {
    auto object = std::dynamic_pointer_cast<Object>(FindHandle(handle));
    if (!object)
        SetInvalidHandleError();
    return object;
}

} // namespace platform
