// The millisecond tick counter and sleep. Any thread may call these; neither can fail.
#pragma once

#include "platform/Types.h"

// Milliseconds of the monotonic clock, in 32 bits: the value wraps after about 49.7 days, so
// differences are taken in unsigned arithmetic.
DWORD GetTickCount();

// Blocks for the given milliseconds (0: gives up the rest of the time slice). On the thread that
// has taken the console over, the console is served meanwhile as in a wait.
void Sleep(DWORD dwMilliseconds);
