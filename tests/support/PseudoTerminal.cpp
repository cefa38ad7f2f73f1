#include "tests/support/PseudoTerminal.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>

namespace {

constexpr int kPatience = 60'000; // milliseconds for what must come

CDescriptor OpenFarEnd(const std::string& path) {
    int end = -1;
    // Exclusive use outlasts who had it by a moment.
    while ((end = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) < 0 &&
           errno == EBUSY)
        usleep(1000);
    return CDescriptor(end);
}

} // namespace

CPseudoTerminal::CPseudoTerminal()
    : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    EXPECT_EQ(grantpt(m_master.Get()), 0);
    EXPECT_EQ(unlockpt(m_master.Get()), 0);
    char path[64] = "";
    EXPECT_EQ(ptsname_r(m_master.Get(), path, sizeof(path)), 0);
    m_path = path;
    m_slave = CDescriptor(open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(m_slave);
}

CPseudoTerminal::CPseudoTerminal(const std::string& path, const std::string& farEnd)
    : m_path(path), m_master(OpenFarEnd(farEnd)) {
    EXPECT_TRUE(m_master) << farEnd;
    termios settings{};
    if (tcgetattr(m_master.Get(), &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(m_master.Get(), TCSANOW, &settings);
    }
    // What a gadget's driver got when nobody had its terminal open comes with the next byte, or
    // now. And what another program sent may still be on its way.
    constexpr int kSilence = 200; // milliseconds
    const int discipline = N_TTY;
    ioctl(m_master.Get(), TIOCSETD, &discipline);
    pollfd polled = {m_master.Get(), POLLIN, 0};
    while (poll(&polled, 1, kSilence) > 0 && !Read(4096).empty())
        continue;
}

termios CPseudoTerminal::GetSettings() const {
    termios settings{};
    EXPECT_TRUE(!m_slave || tcgetattr(m_slave.Get(), &settings) == 0);
    return settings;
}

void CPseudoTerminal::ApplySettings(const termios& settings) {
    EXPECT_EQ(tcsetattr(m_slave.Get(), TCSANOW, &settings), 0);
}

int CPseudoTerminal::CountUnread() const {
    int unread = 0;
    EXPECT_TRUE(!m_slave || ioctl(m_slave.Get(), FIONREAD, &unread) == 0);
    return unread;
}

void CPseudoTerminal::SetSize(int rows, int columns) {
    const winsize size = {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns),
                          0, 0};
    EXPECT_EQ(ioctl(m_master.Get(), TIOCSWINSZ, &size), 0);
}

std::string CPseudoTerminal::Read(std::size_t limit) {
    std::string bytes(std::min<std::size_t>(limit, 65536), '\0');
    const ssize_t count = read(m_master.Get(), bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

std::size_t CPseudoTerminal::Write(std::string_view bytes) const {
    const ssize_t count =
        write(m_master.Get(), bytes.data(), std::min<std::size_t>(bytes.size(), 4096));
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool CPseudoTerminal::AwaitMaster(short events) const {
    pollfd polled = {m_master.Get(), events, 0};
    return poll(&polled, 1, kPatience) == 1;
}

void CPseudoTerminal::Say(std::string_view text) const {
    while (!text.empty() && AwaitMaster(POLLOUT)) {
        const ssize_t count = write(m_master.Get(), text.data(), text.size());
        if (count < 0 && errno != EAGAIN)
            break;
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    EXPECT_TRUE(text.empty()) << text.size() << " bytes have not been taken";
}

std::string CPseudoTerminal::Hear(std::size_t least, std::size_t most) {
    std::string heard;
    while (heard.size() < least && AwaitMaster(POLLIN)) {
        const std::string some = Read(most - heard.size());
        if (some.empty())
            break;
        heard += some;
    }
    return heard;
}

bool operator==(const termios& left, const termios& right) {
    return std::memcmp(&left, &right, sizeof(termios)) == 0;
}
