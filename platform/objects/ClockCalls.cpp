#include "platform/Clock.h"

#include "platform/objects/Deadline.h"
#include "platform/objects/WaitLoop.h"

#include <sched.h>

#include <algorithm>
#include <ctime>

namespace platform {

std::int64_t MonotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * NANOSECONDS_PER_SECOND + now.tv_nsec;
}

CDeadline::CDeadline(DWORD milliseconds) : m_when(0) {
    if (milliseconds == INFINITE)
        m_when = NEVER;
    else if (milliseconds != 0)
        m_when = MonotonicNanoseconds() + milliseconds * NANOSECONDS_PER_MILLISECOND;
}

std::int64_t CDeadline::Remaining() const {
    if (m_when == 0 || m_when == NEVER)
        return m_when;
    return std::max<std::int64_t>(m_when - MonotonicNanoseconds(), 0);
}

} // namespace platform

DWORD GetTickCount() {
    return static_cast<DWORD>(platform::MonotonicNanoseconds() /
                              platform::NANOSECONDS_PER_MILLISECOND);
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
