// The driver's wait for a line ends at a signal only, and one that comes just before the wait is
// lost. Stop therefore sends signals until the thread has ended; the thread shares its state with
// the watch, so that it may outlive it in a driver that hears none.
#include "platform/comm/CommLineWatch.h"

#include "platform/Thread.h"
#include "platform/objects/InterruptSignal.h"
#include "platform/objects/MakeObject.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <new>

namespace platform {
namespace {

// A signal that comes just before the wait in the driver does not end it, so it is sent again.
constexpr DWORD kSignalInterval = 2; // milliseconds
constexpr int kMostSignals = 250;

// Between two moves, against lines that never rest; whoever waits looks once more on his own.
constexpr timespec kRest = {0, 10'000'000};

} // namespace

BOOL CCommLineWatch::Start(const std::shared_ptr<ICommLines>& lines,
                           const std::shared_ptr<CCommWake>& wake) {
    if (m_state)
        return FALSE;
    m_state = MakeObject<State>();
    if (!m_state)
        return FALSE;
    m_state->lines = lines;
    m_state->wake = wake;
    auto* const share = new (std::nothrow) std::shared_ptr<State>(m_state);
    if (share)
        m_hThread.reset(CreateThread(nullptr, 0, ThreadProc, share, 0, &m_dwThreadId));
    if (m_hThread)
        return TRUE;
    // Remembered as not able, and not tried at each wait.
    delete share;
    m_state->isAble = false;
    return FALSE;
}

void CCommLineWatch::Stop() {
    if (!m_state)
        return;
    m_state->isStopped = true;
    for (int i = 0; m_hThread && i < kMostSignals; ++i) {
        if (WaitForSingleObject(m_hThread.get(), i == 0 ? 0 : kSignalInterval) == WAIT_OBJECT_0)
            break;
        tgkill(getpid(), static_cast<pid_t>(m_dwThreadId), InterruptSignal());
    }
    m_hThread.reset();
    m_state.reset();
}

DWORD CCommLineWatch::ThreadProc(LPVOID state) {
    const std::unique_ptr<std::shared_ptr<State>> share(
        static_cast<std::shared_ptr<State>*>(state));
    LetInterruptThrough();
    Watch(**share);
    return 0;
}

void CCommLineWatch::Watch(State& state) {
    while (!state.isStopped) {
        const int systemError = state.lines->AwaitMove(TIOCM_CAR);
        if (systemError == EINTR)
            continue;
        if (systemError != 0)
            state.isAble = false;
        state.wake->Signal();
        if (systemError != 0)
            return;
        nanosleep(&kRest, nullptr);
    }
}

} // namespace platform
