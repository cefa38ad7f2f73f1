#include "tests/endtoend/PseudoTerminal.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/ioctl.h>

CPseudoTerminal::CPseudoTerminal() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_TRUE(m_master.IsOpen());
    EXPECT_EQ(grantpt(m_master.Get()), 0);
    EXPECT_EQ(unlockpt(m_master.Get()), 0);
    fcntl(m_master.Get(), F_SETFL, O_RDWR | O_NONBLOCK);

    char path[64] = "";
    EXPECT_EQ(ptsname_r(m_master.Get(), path, sizeof(path)), 0);
    m_path = path;
    m_slave = CDescriptor(open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(m_slave.IsOpen());
}

termios CPseudoTerminal::GetSettings() const {
    termios settings{};
    EXPECT_EQ(tcgetattr(m_slave.Get(), &settings), 0);
    return settings;
}

void CPseudoTerminal::ApplySettings(const termios& settings) {
    EXPECT_EQ(tcsetattr(m_slave.Get(), TCSANOW, &settings), 0);
}

void CPseudoTerminal::SetSize(int rows, int columns) {
    winsize size{};
    size.ws_row = static_cast<unsigned short>(rows);
    size.ws_col = static_cast<unsigned short>(columns);
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
    return left.c_iflag == right.c_iflag && left.c_oflag == right.c_oflag &&
           left.c_cflag == right.c_cflag && left.c_lflag == right.c_lflag &&
           left.c_ispeed == right.c_ispeed && left.c_ospeed == right.c_ospeed &&
           std::equal(std::begin(left.c_cc), std::end(left.c_cc), std::begin(right.c_cc));
}
