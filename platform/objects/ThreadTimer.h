// A timer of the calling thread: for what must be done in time while the thread waits, wherever in
// the program that is.
//
// The thread itself makes the call, once, from within the first of its waits (sleeps and blocking
// calls of this layer included) that lasts until the time has come or begins after it. With no
// timer set a wait has no limit of its own. The call is made in the midst of whatever waits: it may
// wait itself, and must leave the console alone. A thread has one timer.
#pragma once

#include "platform/Types.h"

namespace platform {

using TimerCall = void (*)(void* context);

// Sets the timer to so many milliseconds from now; the one that was set is forgotten.
void SetThreadTimer(DWORD milliseconds, TimerCall call, void* context);

// Takes the timer away; harmless when none is set.
void StopThreadTimer();

} // namespace platform
