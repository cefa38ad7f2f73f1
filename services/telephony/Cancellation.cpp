#include "services/telephony/Cancellation.h"

#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>

namespace telephonyservice {

CCancellation::CCancellation() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void CCancellation::Cancel() {
    m_bCancelled = true;
    const std::uint64_t one = 1;
    // Fails only where the event is signalled already, or where there is none.
    [[maybe_unused]] const ssize_t written = write(m_event.Get(), &one, sizeof one);
}

bool CCancellation::Wait(int milliseconds) const {
    pollfd event{m_event.Get(), POLLIN, 0};
    poll(&event, 1, milliseconds);
    return m_bCancelled;
}

} // namespace telephonyservice
