// One table tells each signal's role. The handler decides by it and by a few atomic words, and does
// no more than what is allowed there: it notes, asks for the end, or rescues the terminal and lets
// the former effect happen.
#include "console/ConsoleSignals.h"

#include "platform/objects/Descriptor.h"
#include "platform/objects/EndRequest.h"
#include "platform/objects/EndWatch.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

namespace platform::consolesignals {
namespace {

enum class Role {
    Notice,  // noted, always
    Control, // noted while there is a control handler, else the end
    End,     // its usual effect is the end
    Crash,   // the same, on a stack of its own
};

struct Entry {
    int number;
    Role role;
    unsigned noted;
};

constexpr Entry kSignals[] = {
    {SIGINT, Role::Control, kSignalCtrlC},
    {SIGQUIT, Role::Control, kSignalBreak},
    {SIGHUP, Role::Control, kSignalClose},
    {SIGTERM, Role::Control, kSignalShutdown},
    {SIGWINCH, Role::Notice, kSignalSize},
    {SIGTSTP, Role::Notice, kSignalStop},
    {SIGCONT, Role::Notice, kSignalContinue},
    {SIGSEGV, Role::Crash, 0},
    {SIGBUS, Role::Crash, 0},
    {SIGFPE, Role::Crash, 0},
    {SIGILL, Role::Crash, 0},
    {SIGABRT, Role::Crash, 0},
    {SIGTRAP, Role::Crash, 0},
    {SIGSYS, Role::Crash, 0},
    {SIGALRM, Role::End, 0},
    {SIGVTALRM, Role::End, 0},
    {SIGPROF, Role::End, 0},
    {SIGUSR1, Role::End, 0},
    {SIGUSR2, Role::End, 0},
    {SIGXCPU, Role::End, 0},
    {SIGXFSZ, Role::End, 0},
    {SIGIO, Role::End, 0},
    {SIGPWR, Role::End, 0},
    {SIGSTKFLT, Role::End, 0},
};
constexpr int kSignalCount = sizeof kSignals / sizeof *kSignals;

// A thread that does not get to its next wait for this long does not answer: the next signal ends
// the process.
constexpr time_t kPatienceSeconds = 2;

// From a control event that is not acted on, or from the request for the end, to the process's end
// come what may: within the three seconds that a system allows a program for its end, with room for
// the ending itself.
constexpr itimerspec kLastMoment = {{0, 0}, {2, 800'000'000}};
constexpr itimerspec kNoMoment = {};

constexpr std::size_t kCrashStackBytes = std::size_t{32} * 1024;

struct State {
    CConsoleMode* mode = nullptr;
    CDescriptor wake;
    std::atomic<int> wakeNumber = -1;
    std::atomic<unsigned> noted = 0;
    std::atomic<bool> notesControlEvents = false;
    std::atomic<time_t> controlSince =
        0; // when the oldest control event not looked at came; 0: none
    struct sigaction before[kSignalCount] = {};
    bool installed[kSignalCount] = {};
    struct sigaction beforePipe = {};
    bool active = false;
    bool hasStack = false;
    std::atomic<bool> isKept = false; // control signals ask for the end
    std::atomic<int> lastControl = 0; // of those that end a program, the one that came last
    std::atomic<bool> isTimed = false;
    timer_t lastMoment{};
};

State g_state;
alignas(16) unsigned char g_crashStack[kCrashStackBytes];

int IndexOf(int number) {
    int index = 0;
    while (kSignals[index].number != number)
        ++index;
    return index;
}

time_t Seconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec + 1; // never 0
}

bool IsIgnored(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN;
}

// The former effect comes back and happens: at once when this handler returns to the instruction
// that failed, else by sending the signal again, which is held until then.
void EndProcess(int index, const siginfo_t* information) {
    struct sigaction last = g_state.before[index];
    if (IsIgnored(last))
        last.sa_handler = SIG_DFL;
    g_state.mode->Rescue();
    sigaction(kSignals[index].number, &last, nullptr);
    const bool happensAgain = kSignals[index].role == Role::Crash && information->si_code > 0;
    if (!happensAgain)
        raise(kSignals[index].number);
}

bool IsUnanswered(time_t now) {
    time_t none = 0;
    if (g_state.controlSince.compare_exchange_strong(none, now))
        return false;
    return now - none >= kPatienceSeconds;
}

enum class Answer { Note, Request, End, None };

Answer AnswerTo(int index) {
    if (kSignals[index].role == Role::Notice)
        return Answer::Note;
    if (kSignals[index].role != Role::Control)
        return Answer::End;
    if (!g_state.notesControlEvents.load() || g_state.wakeNumber.load() < 0)
        return IsIgnored(g_state.before[index]) ? Answer::None
               : g_state.isKept                 ? Answer::Request
                                                : Answer::End;
    return IsUnanswered(Seconds()) ? Answer::End : Answer::Note;
}

void Note(unsigned bits) {
    g_state.noted.fetch_or(bits);
    const std::uint64_t one = 1;
    const ssize_t written = write(g_state.wakeNumber.load(), &one, sizeof one);
    static_cast<void>(written); // a full counter shows as well
}

// An interrupt may be a key for the device.
bool MayEnd(const Entry& entry) {
    return entry.role == Role::Control && entry.number != SIGINT;
}

void EndByLastControl() {
    const int number = g_state.lastControl;
    if (number == 0)
        return;
    // It is an end in order, even where the signal's usual effect leaves a core.
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(number, SIG_DFL);
    raise(number);
}

void OnLastMoment(int) {
    if (g_state.mode != nullptr)
        g_state.mode->Rescue();
    EndByLastControl();
}

void OnSignal(int number, siginfo_t* information, void*) {
    const int savedError = errno;
    const int index = IndexOf(number);
    const Answer answer = AnswerTo(index);
    if (kSignals[index].role == Role::Control && answer != Answer::None)
        g_state.lastControl.store(number);
    if (answer == Answer::Note && MayEnd(kSignals[index]))
        StartLastMoment();
    if (answer == Answer::End)
        EndProcess(index, information);
    else if (answer == Answer::Note)
        Note(kSignals[index].noted);
    else if (answer == Answer::Request)
        RequestEndAtOnce();
    errno = savedError;
}

// A signal that somebody has set aside keeps that; so does hang-up under nohup. The keys and the
// session's end are the console's even in a process that a shell started in the background.
bool IsWanted(const Entry& entry, const struct sigaction& before) {
    if (entry.role == Role::Control && entry.number != SIGHUP)
        return true;
    if (IsIgnored(before))
        return entry.number == SIGCONT || entry.number == SIGWINCH;
    return entry.role != Role::End || before.sa_handler == SIG_DFL;
}

void InstallOne(int index) {
    const Entry& entry = kSignals[index];
    if (g_state.installed[index])
        return; // kept since the last time
    struct sigaction action {};
    action.sa_sigaction = OnSignal;
    action.sa_flags = SA_SIGINFO | (entry.role == Role::Crash ? SA_ONSTACK : 0);
    // A read of the keyboard in the background, begun again, would stop the process before anybody
    // has looked at what was noted.
    if (entry.role != Role::Control && entry.number != SIGCONT)
        action.sa_flags |= SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(entry.number, &action, &g_state.before[index]);
    g_state.installed[index] = IsWanted(entry, g_state.before[index]);
    if (!g_state.installed[index])
        sigaction(entry.number, &g_state.before[index], nullptr);
}

// An overflown stack has no room for a handler. Other threads go without: their overflow ends the
// process, and the shell has to bring the terminal back.
void UseCrashStack() {
    stack_t stack{};
    if (sigaltstack(nullptr, &stack) != 0 || (stack.ss_flags & SS_DISABLE) == 0)
        return;
    stack = {};
    stack.ss_sp = g_crashStack;
    stack.ss_size = sizeof g_crashStack;
    g_state.hasStack = sigaltstack(&stack, nullptr) == 0;
}

void LeaveCrashStack() {
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    if (g_state.hasStack)
        sigaltstack(&none, nullptr);
    g_state.hasStack = false;
}

} // namespace

void Install(CConsoleMode& mode) {
    if (g_state.active)
        return;
    g_state.mode = &mode;
    g_state.wake.Reset(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    g_state.wakeNumber.store(g_state.wake.Get());
    g_state.noted.store(0);
    g_state.controlSince.store(0);
    UseCrashStack();
    for (int index = 0; index < kSignalCount; ++index)
        InstallOne(index);
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &g_state.beforePipe);
    g_state.active = true;
}

void Remove() {
    if (!g_state.active)
        return;
    g_state.active = false;
    for (int index = 0; index < kSignalCount; ++index) {
        const bool isKept = g_state.isKept && kSignals[index].role == Role::Control &&
                            !IsIgnored(g_state.before[index]);
        if (!g_state.installed[index] || isKept)
            continue;
        sigaction(kSignals[index].number, &g_state.before[index], nullptr);
        g_state.installed[index] = false;
    }
    sigaction(SIGPIPE, &g_state.beforePipe, nullptr);
    LeaveCrashStack();
    g_state.wakeNumber.store(-1);
    g_state.wake.Reset();
    // Giving a stuck terminal back takes seconds, in which its window may be closed.
    constexpr unsigned kEnds = kSignalBreak | kSignalClose | kSignalShutdown;
    if (g_state.isKept && (g_state.noted.exchange(0) & kEnds) != 0)
        RequestEndAtOnce();
}

void NoteControlEvents(bool noted) {
    g_state.notesControlEvents.store(noted);
}

// The signal of the last moment is a real-time one, which nobody sends of his own, and not that of
// platform/objects/InterruptSignal.h.
void KeepForEnd() {
    OnEndRequest(StartLastMoment);
    struct sigaction action {};
    action.sa_handler = OnLastMoment;
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGRTMIN + 1;
    if (g_state.isKept || sigaction(event.sigev_signo, &action, nullptr) != 0 ||
        timer_create(CLOCK_MONOTONIC, &event, &g_state.lastMoment) != 0)
        return;
    g_state.isKept = true;
}

void StartLastMoment() {
    if (g_state.isKept && !g_state.isTimed.exchange(true))
        timer_settime(g_state.lastMoment, 0, &kLastMoment, nullptr);
}

void StandDown() {
    if (!IsEndRequested() && g_state.isTimed.exchange(false))
        timer_settime(g_state.lastMoment, 0, &kNoMoment, nullptr);
}

void EndBySignal() {
    EndByLastControl();
}

int Descriptor() {
    return g_state.wake.Get();
}

unsigned Take() {
    std::uint64_t count;
    const ssize_t length = read(g_state.wake.Get(), &count, sizeof count);
    static_cast<void>(length); // emptied is all that matters
    g_state.controlSince.store(0);
    return g_state.noted.exchange(0);
}

void StopProcess() {
    struct sigaction usual {};
    usual.sa_handler = SIG_DFL;
    struct sigaction ours {};
    sigaction(SIGTSTP, &usual, &ours);
    raise(SIGTSTP);
    sigaction(SIGTSTP, &ours, nullptr);
}

} // namespace platform::consolesignals
