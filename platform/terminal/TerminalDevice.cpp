#include "platform/terminal/TerminalDevice.h"

#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

constexpr int kStandardStreams[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};

constexpr unsigned kFirstPtyMajor = 136;
constexpr unsigned kLastPtyMajor = 143;

// /dev/tty, which is whatever terminal the process belongs to.
constexpr unsigned kTtyMajor = 5;
constexpr unsigned kTtyMinor = 0;

} // namespace

bool IsPseudoTerminal(dev_t device) {
    const unsigned major = major(device);
    return major >= kFirstPtyMajor && major <= kLastPtyMajor;
}

// In a folder tree with pseudo-terminals of its own their numbers are given out once more.
bool AreSameTerminal(const struct stat& one, const struct stat& two) {
    return one.st_rdev == two.st_rdev &&
           (one.st_dev == two.st_dev || !IsPseudoTerminal(one.st_rdev));
}

bool IsOwnTerminal(const struct stat& device) {
    if (device.st_rdev == makedev(kTtyMajor, kTtyMinor))
        return true;
    return std::any_of(std::begin(kStandardStreams), std::end(kStandardStreams), [&](int stream) {
        struct stat status {};
        return isatty(stream) != 0 && fstat(stream, &status) == 0 &&
               AreSameTerminal(device, status);
    });
}

} // namespace platform
