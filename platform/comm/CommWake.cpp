#include "platform/comm/CommWake.h"

#include "platform/Error.h"

#include <sys/eventfd.h>

namespace platform {

BOOL CCommWake::Create() {
    m_descriptor.Reset(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    return m_descriptor ? TRUE : FailWithErrno();
}

void CCommWake::Signal() {
    eventfd_write(m_descriptor.Get(), 1);
}

void CCommWake::Clear() {
    eventfd_t count = 0;
    eventfd_read(m_descriptor.Get(), &count);
}

} // namespace platform
