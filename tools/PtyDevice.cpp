#include "tools/PtyDevice.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace modemsim {
namespace {

void SetRaw(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0)
        return;
    cfmakeraw(&settings);
    tcsetattr(descriptor, TCSANOW, &settings);
}

CPtyDevice::ETransfer Outcome(ssize_t result, std::size_t& count) {
    count = result > 0 ? static_cast<std::size_t>(result) : 0;
    if (result > 0)
        return CPtyDevice::ETransfer::Done;
    const bool later = result < 0 && (errno == EAGAIN || errno == EINTR);
    return later ? CPtyDevice::ETransfer::Later : CPtyDevice::ETransfer::Gone;
}

} // namespace

bool CPtyDevice::Open(std::string& error) {
    m_hController = platform::CDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    const int controller = m_hController.Get();
    std::array<char, 128> name{};
    const bool made = m_hController && grantpt(controller) == 0 && unlockpt(controller) == 0 &&
                      ptsname_r(controller, name.data(), name.size()) == 0;
    m_strPath = name.data();
    if (!made || !OpenOwn()) {
        error = std::string("cannot make a pseudo-terminal: ") + std::strerror(errno);
        return false;
    }
    SetRaw(m_hOwn.Get());

    // Watched from here on, so that the own descriptor is not taken for an opener.
    m_hNotices = platform::CDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (inotify_add_watch(m_hNotices.Get(), m_strPath.c_str(), IN_OPEN | IN_CLOSE) < 0) {
        error = "cannot watch " + m_strPath + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

bool CPtyDevice::OpenOwn() {
    m_hOwn = platform::CDescriptor(
        ::open(m_strPath.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    return static_cast<bool>(m_hOwn);
}

int CPtyDevice::Descriptor() const {
    return m_bSomebody || m_hOwn ? m_hController.Get() : -1;
}

unsigned CPtyDevice::TakeNotices() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    unsigned seen = 0;
    ssize_t length = 0;
    while ((length = ::read(m_hNotices.Get(), buffer.data(), buffer.size())) > 0) {
        inotify_event notice{};
        std::size_t place = 0;
        while (place + sizeof notice <= static_cast<std::size_t>(length)) {
            std::memcpy(&notice, buffer.data() + place, sizeof notice);
            seen |= notice.mask;
            place += sizeof notice + notice.len;
        }
    }
    return seen;
}

bool CPtyDevice::NoticeOpeners() {
    const unsigned seen = TakeNotices();
    if ((seen & IN_OPEN) != 0)
        m_bSomebody = true;
    if ((seen & IN_CLOSE) != 0 && m_bSomebody && m_hOwn) {
        // Exclusive use outlives its opener as long as the device exists, and would keep this
        // object itself out.
        ioctl(m_hOwn.Get(), TIOCNXCL);
        m_hOwn.Reset();
    }
    return (seen & IN_OPEN) != 0;
}

void CPtyDevice::Recover() {
    m_bSomebody = false;
    if (!OpenOwn())
        return;
    ioctl(m_hOwn.Get(), TIOCNXCL);
    SetRaw(m_hOwn.Get());
    tcflush(m_hOwn.Get(), TCIFLUSH);
    // These are the notices of the own descriptor. An opener that was just as quick goes unnoticed
    // with them until it sends something.
    TakeNotices();
}

CPtyDevice::ETransfer CPtyDevice::Read(char* buffer, std::size_t size, std::size_t& count) {
    const ETransfer outcome = Outcome(::read(m_hController.Get(), buffer, size), count);
    if (outcome == ETransfer::Done)
        m_bSomebody = true;
    return outcome;
}

CPtyDevice::ETransfer CPtyDevice::Write(std::string_view bytes, std::size_t& count) {
    return Outcome(::write(m_hController.Get(), bytes.data(), bytes.size()), count);
}

void CPtyDevice::Vanish() {
    m_hOwn.Reset();
    m_hController.Reset();
}

} // namespace modemsim
