#include "platform/objects/ThreadTimer.h"

#include "platform/Error.h"
#include "platform/objects/Deadline.h"
#include "platform/objects/DueTimer.h"

namespace platform {
namespace {

struct Timer {
    CDeadline due{INFINITE};
    TimerCall call = nullptr;
    void* context = nullptr;
};

thread_local Timer t_timer;

} // namespace

void SetThreadTimer(DWORD milliseconds, TimerCall call, void* context) {
    t_timer = {CDeadline(milliseconds), call, context};
}

void StopThreadTimer() {
    t_timer = {};
}

std::int64_t ThreadTimerRemaining() {
    return t_timer.due.RemainingNanoseconds();
}

void RunDueThreadTimer() {
    if (t_timer.due.RemainingNanoseconds() != 0)
        return;
    const Timer timer = t_timer;
    StopThreadTimer();
    const DWORD error = GetLastError();
    timer.call(timer.context);
    SetLastError(error);
}

} // namespace platform
