#include "services/debug/Journal.h"

#include <cstdint>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace debugmodule {
namespace {

constexpr int kBitsPerByte = 8;

// A field whose value may hold line ends: name, line end, length in eight bytes, the lowest first,
// value, line end.
void AppendField(std::string& datagram, const char* name, const std::string& value) {
    datagram += name;
    datagram += '\n';
    std::uint64_t length = value.size();
    for (std::size_t byte = 0; byte < sizeof length; ++byte, length >>= kBitsPerByte)
        datagram += static_cast<char>(length & 0xFF);
    datagram += value;
    datagram += '\n';
}

} // namespace

CJournal::CJournal(const char* path)
    : m_nSocket(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    m_address.sun_family = AF_UNIX;
    std::strncpy(m_address.sun_path, path, sizeof m_address.sun_path - 1);
}

CJournal::~CJournal() {
    if (m_nSocket >= 0)
        close(m_nSocket);
}

bool CJournal::Write(int priority, const std::string& message) const {
    std::string datagram;
    AppendField(datagram, "MESSAGE", message);
    AppendField(datagram, "PRIORITY", std::to_string(priority));
    AppendField(datagram, "SYSLOG_IDENTIFIER", "wirelet");
    const ssize_t sent = sendto(m_nSocket, datagram.data(), datagram.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address);
    return sent == static_cast<ssize_t>(datagram.size());
}

} // namespace debugmodule
