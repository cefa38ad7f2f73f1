#include "tests/vm/FarEnd.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace {

// What the last test's program sent may still be on its way.
constexpr int kSilence = 200;

} // namespace

CFarEnd::CFarEnd(const std::string& path)
    : m_line(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    EXPECT_TRUE(m_line) << path;
    termios settings{};
    if (tcgetattr(m_line.Get(), &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(m_line.Get(), TCSANOW, &settings);
    }
    // What a gadget's driver got when nobody had its terminal open comes with the next byte, or
    // now.
    const int discipline = N_TTY;
    ioctl(m_line.Get(), TIOCSETD, &discipline);
    pollfd polled = {m_line.Get(), POLLIN, 0};
    char unwanted[4096];
    while (poll(&polled, 1, kSilence) > 0 && read(m_line.Get(), unwanted, sizeof unwanted) > 0)
        continue;
}

testing::AssertionResult CFarEnd::Gets(CPump& pump, std::string_view bytes) {
    pump.RunUntil([&] { return m_received.size() >= bytes.size(); });
    const std::string received = std::exchange(m_received, {});
    if (received == bytes)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << received.size() << " bytes came: " << received.substr(0, 200);
}

void CFarEnd::JoinTo(CFarEnd& other) {
    m_pOther = &other;
    other.m_pOther = this;
}

short CFarEnd::GetEvents() const {
    return static_cast<short>(POLLIN | (m_toSend.IsEmpty() ? 0 : POLLOUT));
}

void CFarEnd::OnReady(short events) {
    if (events & POLLOUT) {
        const std::string_view front = m_toSend.GetFront(65536);
        const ssize_t count = write(m_line.Get(), front.data(), front.size());
        m_toSend.Take(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (!(events & (POLLIN | POLLHUP)))
        return;
    char bytes[65536];
    const ssize_t count = read(m_line.Get(), bytes, sizeof bytes);
    if (count == 0 || (count < 0 && errno != EAGAIN))
        m_line.Reset();
    if (count <= 0)
        return;
    const std::string_view received(bytes, static_cast<std::size_t>(count));
    if (m_pOther)
        m_pOther->Send(received);
    else
        m_received += received;
}
