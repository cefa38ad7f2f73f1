#include "console/ConsoleChannel.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

void CConsoleChannel::Open() {
    m_way = ChooseWay();
}

void CConsoleChannel::Close() {
    m_own.Reset();
    m_way = Way::Blocking;
}

// A non-blocking description of our own comes from opening the file anew. A regular file is left
// alone, since that would begin at its start; a socket cannot be opened.
CConsoleChannel::Way CConsoleChannel::ChooseWay() {
    struct stat status {};
    if (fstat(m_nInherited, &status) != 0 || S_ISREG(status.st_mode))
        return Way::Blocking;
    if (S_ISSOCK(status.st_mode))
        return Way::Socket;
    char path[32];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", m_nInherited);
    m_own.Reset(open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return m_own ? Way::Nonblocking : Way::Guarded;
}

ssize_t CConsoleChannel::Write(const void* bytes, std::size_t count) {
    if (m_way == Way::Guarded && !HasRoom())
        return 0;
    ssize_t written;
    do
        written = WriteOnce(bytes, count);
    while (written < 0 && errno == EINTR);
    if (written >= 0)
        return written;
    return errno == EAGAIN || errno == EWOULDBLOCK ? 0 : -1;
}

ssize_t CConsoleChannel::WriteOnce(const void* bytes, std::size_t count) const {
    switch (m_way) {
    case Way::Socket:
        return send(m_nInherited, bytes, count, MSG_DONTWAIT | MSG_NOSIGNAL);
    case Way::Guarded:
        // What a pipe that polls writable takes at least.
        return write(m_nInherited, bytes, std::min<std::size_t>(count, PIPE_BUF));
    default:
        return write(Descriptor(), bytes, count);
    }
}

bool CConsoleChannel::HasRoom() const {
    pollfd descriptor = {m_nInherited, POLLOUT, 0};
    return poll(&descriptor, 1, 0) > 0;
}

} // namespace platform
