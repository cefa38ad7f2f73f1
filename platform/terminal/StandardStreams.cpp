#include "platform/terminal/StandardStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {
namespace {

struct Substitute {
    int number;
    const char* path;
    int flags;
};

// In order of number: open() gives out the lowest free one.
constexpr Substitute kSubstitutes[] = {
    {STDIN_FILENO, "/dev/null", O_RDONLY},
    {STDOUT_FILENO, "/dev/full", O_WRONLY},
    {STDERR_FILENO, "/dev/null", O_WRONLY},
};

} // namespace

void OpenClosedStreams() {
    for (const Substitute& substitute : kSubstitutes) {
        if (fcntl(substitute.number, F_GETFD) >= 0)
            continue;
        if (open(substitute.path, substitute.flags) < 0)
            return;
    }
}

bool IsOutputTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

std::size_t ErrorColumns() {
    constexpr std::size_t kUsualColumns = 80;
    if (isatty(STDERR_FILENO) == 0)
        return 0;
    winsize size{};
    ioctl(STDERR_FILENO, TIOCGWINSZ, &size);
    return size.ws_col != 0 ? size.ws_col : kUsualColumns;
}

bool IsErrorReady() {
    constexpr int kMostMilliseconds = 100; // a terminal that has just got much is not stuck
    pollfd error = {STDERR_FILENO, POLLOUT, 0};
    return poll(&error, 1, kMostMilliseconds) > 0 && error.revents == POLLOUT;
}

} // namespace platform
