// A wait for the system's own, in calls that wait on behalf of an object. Any thread may call it.
// Nothing outside platform/ and console/ includes this header.
#pragma once

#include "platform/Types.h"

#include <poll.h>

namespace platform {

// Blocks until the descriptor shows one of the events or the time is up (INFINITE: no limit), as
// part of a call that waits on behalf of an object, with the companion served and thread
// termination noticed. Returns poll()'s events (POLLHUP and POLLERR included), 0 when the time is
// up, -1 with the last error set when the thread was terminated. descriptor2, when not -1, is
// watched for POLLIN beside the first and reported as POLLPRI.
int WaitForDescriptor(int descriptor, short events, DWORD milliseconds, int descriptor2 = -1);

} // namespace platform
