// CCancellation: the word to a thread that what it is doing is no longer wanted.
//
// Shared between the one who waits and the one who ends it; said once, it stays said. Any thread
// may call. Without a descriptor to wait on, waits end by their time alone.
#pragma once

#include "platform/objects/Descriptor.h"

#include <atomic>

namespace telephonyservice {

class CCancellation {
  public:
    CCancellation();

    void Cancel();
    bool IsCancelled() const { return m_bCancelled; }

    // Readable once cancelled; for poll().
    int GetDescriptor() const { return m_event.Get(); }

    // Returns when cancelled or when the milliseconds are over; true when cancelled.
    bool Wait(int milliseconds) const;

  private:
    platform::CDescriptor m_event;
    std::atomic<bool> m_bCancelled = false;
};

} // namespace telephonyservice
