// Those who wait for the bytes of a port with poll(): what they poll, and how they are woken for
// bytes that another thread has taken from under them, from the driver into the port's queue. A
// thread that poll() wakes looks at the driver again, finds nothing there and sleeps on.
//
// Owned by the port and guarded by its receive lock, but for Create and Descriptor. Nothing outside
// platform/ includes this header.
#pragma once

#include "platform/comm/CommWake.h"

namespace platform {

class CCommWaiters {
  public:
    // device is what the driver's bytes and its end show on; it outlives this object. FALSE with
    // ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create(int device);

    // Shows POLLIN for what the device shows, and from a wake until the last waiter has left.
    int Descriptor() const { return m_either.Get(); }

    void Enter() { ++m_nWaiting; }
    void Leave();
    // Costs nothing when nobody waits.
    void Wake();

  private:
    CDescriptor m_either; // an epoll instance of the device and the wake
    CCommWake m_wake;
    int m_nWaiting = 0;
    bool m_bWoken = false;
};

} // namespace platform
