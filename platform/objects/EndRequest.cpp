// A request is a moment on the clock, kept in one atomic that a signal handler may set, and an
// eventfd that wakes the waits of then; those that begin later see the moment itself.
#include "platform/objects/EndRequest.h"

#include "platform/objects/Deadline.h"
#include "platform/objects/EndWatch.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace platform {
namespace {

// When the end was asked for, on the monotonic clock; 0: not yet. At once is so long ago that no
// grace is left.
std::atomic<std::int64_t> g_requestedAt = 0;
constexpr std::int64_t kAtOnce = 1;

std::atomic<int> g_wake = -1; // an eventfd; lives as long as the process

std::atomic<void (*)()> g_call = nullptr;

thread_local DWORD t_dwGrace = INFINITE;

void OpenWake() {
    static const int wake = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    g_wake = wake;
}

void Request(std::int64_t when) {
    std::int64_t never = 0;
    if (!g_requestedAt.compare_exchange_strong(never, when))
        return;
    if (void (*const call)() = g_call)
        call();
    const std::uint64_t one = 1;
    const ssize_t written = write(g_wake, &one, sizeof one);
    static_cast<void>(written); // nobody heeds it then
}

} // namespace

void RequestEnd() {
    Request(MonotonicNanoseconds());
}

void RequestEndAtOnce() {
    Request(kAtOnce);
}

bool IsEndRequested() {
    return g_requestedAt != 0;
}

CEndGrace::CEndGrace(DWORD milliseconds) : m_dwFormer(std::exchange(t_dwGrace, milliseconds)) {
    OpenWake();
}

CEndGrace::~CEndGrace() {
    t_dwGrace = m_dwFormer;
}

std::int64_t EndRemaining() {
    const std::int64_t requestedAt = g_requestedAt;
    if (t_dwGrace == INFINITE || requestedAt == 0)
        return CDeadline::kNever;
    const std::int64_t end = requestedAt + t_dwGrace * kNanosecondsPerMillisecond;
    return t_dwGrace == 0 ? 0 : std::max<std::int64_t>(end - MonotonicNanoseconds(), 0);
}

int EndDescriptor() {
    return t_dwGrace == INFINITE ? -1 : g_wake.load();
}

void OnEndRequest(void (*call)()) {
    OpenWake();
    g_call = call;
}

} // namespace platform
