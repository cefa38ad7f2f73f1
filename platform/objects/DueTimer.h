// The waits' side of the thread timer (platform/objects/ThreadTimer.h). Nothing outside platform/
// includes this header.
#pragma once

#include <cstdint>

namespace platform {

// The nanoseconds until the calling thread's timer is due; CDeadline::kNever without one.
std::int64_t ThreadTimerRemaining();

// Makes the call of a timer that is due, which is then no longer set. Keeps the last error.
void RunDueThreadTimer();

} // namespace platform
