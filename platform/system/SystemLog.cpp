// One datagram in the form of the classic log protocol; what is not taken at once is only counted.
#include "platform/system/SystemLog.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>

namespace platform {
namespace {

// "<15>Nov 23 14:05:09 wirelet: ", in English whatever the locale, as the daemons read it.
std::string MakeHead(LogSeverity severity) {
    constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 64> head{};
    std::snprintf(head.data(), head.size(),
                  "<%d>%s %2d %02d:%02d:%02d wirelet: ", LOG_USER | static_cast<int>(severity),
                  kMonths[static_cast<std::size_t>(parts.tm_mon) % kMonths.size()], parts.tm_mday,
                  parts.tm_hour, parts.tm_min, parts.tm_sec);
    return head.data();
}

} // namespace

void CSystemLog::Write(LogSeverity severity, const char* text) noexcept {
    const unsigned long lost = m_ulLost.exchange(0);
    try {
        std::string datagram = MakeHead(severity);
        if (lost != 0)
            datagram += "(lost before: " + std::to_string(lost) + ") ";
        if (Send(datagram + text))
            return;
    } catch (const std::bad_alloc&) {
        // Lost like one that nobody takes.
    }
    m_ulLost += lost + 1;
}

// A socket for each: kept, it would be one more thing to close, and none is kept busy by it.
bool CSystemLog::Send(const std::string& datagram) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, m_szPath, sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0)
        return false;
    const ssize_t sent = sendto(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&address), sizeof address);
    close(descriptor);
    return sent == static_cast<ssize_t>(datagram.size());
}

CSystemLog& SystemLog() {
    static CSystemLog& log = *new CSystemLog("/dev/log"); // outlives every thread that still writes
    return log;
}

} // namespace platform
