// Those who wait with poll() for something that other threads may do, and how they are woken by it.
// A thread that poll() wakes looks for itself, finds nothing to do and sleeps on.
//
// Owned by one direction of a port and guarded by its lock, but for Create and WakeDescriptor.
// Nothing outside platform/ includes this header.
#pragma once

#include "platform/comm/CommWake.h"

namespace platform {

class CCommWaiters {
  public:
    // FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create() { return m_wake.Create(); }

    // Shows POLLIN from a wake until the last waiter has left.
    int WakeDescriptor() const { return m_wake.Descriptor(); }

    void Enter() { ++m_nWaiting; }
    void Leave();
    // Costs nothing when nobody waits.
    void Wake();

  private:
    CCommWake m_wake;
    int m_nWaiting = 0;
    bool m_bWoken = false;
};

} // namespace platform
