#include "platform/comm/CommClose.h"

#include "platform/objects/InterruptSignal.h"

#include <csignal>
#include <ctime>
#include <unistd.h>

namespace platform {
namespace {

// The wait ends at any signal that has a handler. There may be several waits one after the other,
// so the signal comes again and again.
constexpr long kInterval = 20'000'000; // nanoseconds

// Sends the calling thread a signal at intervals while it lives.
class CInterruption {
  public:
    CInterruption() : m_formerMask(LetInterruptThrough()) {
        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = InterruptSignal();
        event._sigev_un._tid = gettid();
        const itimerspec interval = {{0, kInterval}, {0, kInterval}};
        m_bStarted = timer_create(CLOCK_MONOTONIC, &event, &m_timer) == 0;
        if (m_bStarted)
            timer_settime(m_timer, 0, &interval, nullptr);
    }
    CInterruption(const CInterruption&) = delete;
    CInterruption& operator=(const CInterruption&) = delete;
    ~CInterruption() {
        if (m_bStarted)
            timer_delete(m_timer);
        pthread_sigmask(SIG_SETMASK, &m_formerMask, nullptr);
    }

  private:
    const sigset_t m_formerMask;
    timer_t m_timer{};
    bool m_bStarted = false;
};

} // namespace

void CloseWithoutWaiting(CDescriptor& descriptor) {
    const CInterruption interruption;
    descriptor.Reset();
}

} // namespace platform
