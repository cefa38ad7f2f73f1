#include "platform/objects/HandleObject.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace platform {

CDescriptor& CDescriptor::operator=(CDescriptor&& other) noexcept {
    if (this != &other)
        Reset(other.Detach());
    return *this;
}

int CDescriptor::Detach() {
    return std::exchange(m_descriptor, -1);
}

int CDescriptor::Reset(int descriptor) {
    const int former = std::exchange(m_descriptor, descriptor);
    if (former < 0)
        return 0;
    // Linux gives the descriptor back even when a signal interrupts the close.
    if (close(former) == 0 || errno == EINTR)
        return 0;
    return errno;
}

} // namespace platform
