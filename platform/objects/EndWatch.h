// What the waits know of a requested end (platform/objects/EndRequest.h). Nothing outside platform/
// includes this header.
#pragma once

#include <cstdint>

namespace platform {

// The nanoseconds until the calling thread's waits fail; CDeadline::NEVER while the end is not
// asked for or the thread does not heed it.
std::int64_t EndRemaining();

// Shows POLLIN once the end is asked for; -1 for a thread that does not heed it.
int EndDescriptor();

// RequestEnd without any grace. Safe in a signal handler.
void RequestEndAtOnce();

} // namespace platform
