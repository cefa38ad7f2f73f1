#include "platform/DetachedProcess.h"

#include "platform/Error.h"
#include "platform/objects/HandleObject.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr int FIRST_BESIDE_STREAMS = 3;

// What the new process needs until it runs the program.
struct Start {
    const char* path;
    char* const* arguments;
    int nullDevice;
    int report; // the error of a start that failed goes there; closed by one that has not
};

// Beside the standard streams, whichever of them this process has closed.
CDescriptor BesideStreams(CDescriptor descriptor) {
    if (!descriptor || descriptor.Get() >= FIRST_BESIDE_STREAMS)
        return descriptor;
    return CDescriptor(fcntl(descriptor.Get(), F_DUPFD_CLOEXEC, FIRST_BESIDE_STREAMS));
}

// From here on only what may be called in a copy of a process with threads: no allocation, no lock.

[[noreturn]] void Fail(const Start& start) {
    const int error = errno;
    const ssize_t written = write(start.report, &error, sizeof error);
    static_cast<void>(written); // who waits for it sees the end all the same
    _exit(1);
}

void ResetSignals() {
    struct sigaction usual {};
    usual.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number)
        sigaction(number, &usual, nullptr); // refused for those that cannot be changed
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void CloseOthersOnStart() {
    if (close_range(FIRST_BESIDE_STREAMS, ~0U, CLOSE_RANGE_CLOEXEC) == 0)
        return;
    // Before Linux 5.11.
    constexpr rlim_t MOST = 65536;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const int end = static_cast<int>(std::min(limit.rlim_cur, MOST));
    for (int descriptor = FIRST_BESIDE_STREAMS; descriptor < end; ++descriptor)
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

[[noreturn]] void RunProgram(const Start& start) {
    ResetSignals();
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (dup2(start.nullDevice, stream) < 0)
            Fail(start);
    }
    CloseOthersOnStart();
    execve(start.path, start.arguments, environ);
    Fail(start);
}

// The process between: its end makes the program nobody's child.
[[noreturn]] void RunBetween(const Start& start) {
    setsid();
    const pid_t program = fork();
    if (program == 0)
        RunProgram(start);
    if (program < 0)
        Fail(start);
    _exit(0);
}

// No handler of this process may run in its copy, so that signals wait until they are as usual.
pid_t ForkBetween(const Start& start) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t between = fork();
    if (between == 0)
        RunBetween(start);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return between;
}

} // namespace

BOOL StartDetached(const char* path, const char* const* arguments) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0)
        return FailWithErrno();
    const CDescriptor reading(ends[0]);
    CDescriptor writing = BesideStreams(CDescriptor(ends[1]));
    const CDescriptor nullDevice =
        BesideStreams(CDescriptor(open("/dev/null", O_RDWR | O_CLOEXEC)));
    if (!writing || !nullDevice)
        return FailWithErrno();

    const Start start = {path, const_cast<char* const*>(arguments), nullDevice.Get(),
                         writing.Get()};
    const pid_t between = ForkBetween(start);
    if (between < 0)
        return FailWithErrno();
    writing.Reset();
    while (waitpid(between, nullptr, 0) < 0 && errno == EINTR)
        continue;
    int error = 0;
    ssize_t length;
    do
        length = read(reading.Get(), &error, sizeof error);
    while (length < 0 && errno == EINTR);
    return length == sizeof error ? FailWith(ErrorFromErrno(error)) : TRUE;
}

} // namespace platform
