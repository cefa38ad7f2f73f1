#include "platform/objects/InterruptSignal.h"

namespace platform {

int InterruptSignal() {
    return SIGRTMIN;
}

// Without a handler it would end the process; without SA_RESTART it ends the wait.
sigset_t LetInterruptThrough() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(InterruptSignal(), &action, nullptr);
    sigset_t signals;
    sigset_t formerMask;
    sigemptyset(&signals);
    sigaddset(&signals, InterruptSignal());
    pthread_sigmask(SIG_UNBLOCK, &signals, &formerMask);
    return formerMask;
}

} // namespace platform
