// The hook by which the console is served during the waits of its thread. Nothing outside platform/
// and console/ includes this header.
#pragma once

#include <poll.h>

namespace platform {

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

} // namespace platform
