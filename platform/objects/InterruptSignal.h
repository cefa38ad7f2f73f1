// The signal that ends a thread's wait in a driver where nothing else does, and does nothing more.
// Nothing outside platform/ includes this header.
#pragma once

#include <csignal>

namespace platform {

// Its number: one of the real-time signals, which nobody sends of his own.
int InterruptSignal();

// Lets the signal reach the calling thread; returns the thread's mask as it was. Any thread may
// call.
sigset_t LetInterruptThrough();

} // namespace platform
