#include "tests/support/PseudoTerminal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>

CDescriptor OpenMaster(std::string& slavePath) {
    CDescriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_EQ(grantpt(master.Get()), 0);
    EXPECT_EQ(unlockpt(master.Get()), 0);
    char path[64] = "";
    EXPECT_EQ(ptsname_r(master.Get(), path, sizeof(path)), 0);
    slavePath = path;
    return master;
}

CDescriptor OpenFarEnd(const std::string& path) {
    CDescriptor end(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    EXPECT_TRUE(end) << path;
    termios settings{};
    if (tcgetattr(end.Get(), &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(end.Get(), TCSANOW, &settings);
    }
    // What a gadget's driver got when nobody had its terminal open comes with the next byte, or
    // now. And what another program sent may still be on its way.
    constexpr int kSilence = 200; // milliseconds
    const int discipline = N_TTY;
    ioctl(end.Get(), TIOCSETD, &discipline);
    pollfd polled = {end.Get(), POLLIN, 0};
    char bytes[4096];
    while (poll(&polled, 1, kSilence) > 0 && read(end.Get(), bytes, sizeof bytes) > 0)
        continue;
    return end;
}

CPseudoTerminal::CPseudoTerminal() : m_master(OpenMaster(m_path)) {
    fcntl(m_master.Get(), F_SETFL, O_RDWR | O_NONBLOCK);
    m_slave = CDescriptor(open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(m_slave);
}

CPseudoTerminal::CPseudoTerminal(const std::string& path, const std::string& farEnd)
    : m_path(path), m_master(OpenFarEnd(farEnd)) {}

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

void CPseudoTerminal::Write(CByteQueue& bytes) {
    const std::string_view front = bytes.GetFront(4096);
    const ssize_t count = write(m_master.Get(), front.data(), front.size());
    if (count > 0)
        bytes.Take(static_cast<std::size_t>(count));
}

bool operator==(const termios& left, const termios& right) {
    return std::memcmp(&left, &right, sizeof(termios)) == 0;
}
