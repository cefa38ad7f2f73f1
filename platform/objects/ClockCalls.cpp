#include "platform/Clock.h"

#include "platform/objects/Deadline.h"
#include "platform/objects/WaitLoop.h"

#include <sched.h>

DWORD GetTickCount() {
    return static_cast<DWORD>(platform::MonotonicNanoseconds() /
                              platform::kNanosecondsPerMillisecond);
}

void Sleep(DWORD dwMilliseconds) {
    platform::CWaitLoop loop(nullptr, 0, dwMilliseconds);
    if (dwMilliseconds != 0) {
        loop.Run();
        return;
    }
    loop.Serve();
    sched_yield();
}
