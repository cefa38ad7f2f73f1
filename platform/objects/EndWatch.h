// What the waits and the console know of a requested end (platform/objects/EndRequest.h). Nobody
// else includes this header.
#pragma once

#include <cstdint>

namespace platform {

// The nanoseconds until the calling thread's waits fail; CDeadline::kNever while the end is not
// asked for or the thread does not heed it.
std::int64_t EndRemaining();

// Shows POLLIN once the end is asked for; -1 for a thread that does not heed it.
int EndDescriptor();

// RequestEnd without any grace. Safe in a signal handler.
void RequestEndAtOnce();

// What is called when the end is asked for, once, on whichever thread or in a signal handler; there
// is room for one. From now on a request in a signal handler wakes the waits, too.
void OnEndRequest(void (*call)());

} // namespace platform
