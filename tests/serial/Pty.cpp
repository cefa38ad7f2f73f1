#include "tests/serial/Pty.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int PATIENCE = 20000;

} // namespace

CPty::CPty() : m_device(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    char path[64] = {};
    if (m_device < 0 || grantpt(m_device) != 0 || unlockpt(m_device) != 0 ||
        ptsname_r(m_device, path, sizeof(path)) != 0)
        ADD_FAILURE() << "no pseudo-terminal";
    m_path = path;
}

void CPty::Send(std::string_view bytes) {
    while (!bytes.empty() && WaitFor(POLLOUT)) {
        const ssize_t sent = write(m_device, bytes.data(), bytes.size());
        if (sent > 0)
            bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    EXPECT_TRUE(bytes.empty());
}

std::string CPty::ReceiveSome(std::size_t most) {
    std::string bytes(most, '\0');
    ssize_t received = -1;
    while (received < 0 && WaitFor(POLLIN)) {
        received = read(m_device, bytes.data(), most);
        if (received < 0 && errno != EAGAIN)
            break;
    }
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(received, 0)));
    return bytes;
}

std::string CPty::Receive(std::size_t count) {
    std::string bytes;
    while (bytes.size() < count) {
        const std::string some = ReceiveSome(count - bytes.size());
        if (some.empty())
            break;
        bytes += some;
    }
    EXPECT_EQ(bytes.size(), count);
    return bytes;
}

unsigned CPty::Speed() const {
    return Settings().c_ospeed;
}

bool CPty::HasHandshake() const {
    return (Settings().c_cflag & CRTSCTS) != 0;
}

int CPty::XonXoffDirections() const {
    const tcflag_t flags = Settings().c_iflag;
    return ((flags & IXON) != 0) + ((flags & IXOFF) != 0);
}

termios2 CPty::Settings() const {
    termios2 settings = {};
    EXPECT_EQ(ioctl(m_device, TCGETS2, &settings), 0);
    return settings;
}

void CPty::Unplug() {
    if (m_device >= 0)
        close(m_device);
    m_device = -1;
}

bool CPty::WaitFor(short events) const {
    pollfd polled = {m_device, events, 0};
    const bool isReady = poll(&polled, 1, PATIENCE) == 1 && (polled.revents & events) != 0;
    EXPECT_TRUE(isReady);
    return isReady;
}
