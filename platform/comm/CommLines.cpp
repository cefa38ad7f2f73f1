#include "platform/comm/CommLines.h"

#include "platform/comm/CommDriver.h"

#include <sys/ioctl.h>

#include <cerrno>

namespace platform {

BOOL CCommDriverLines::GetLines(int& lines) {
    return m_driver.GetLines(lines);
}

bool CCommDriverLines::HasLines() const {
    return m_driver.HasLines();
}

BOOL CCommDriverLines::GetCounters(serial_icounter_struct& counters) {
    return !m_driver.IsGone() && ioctl(m_driver.Descriptor(), TIOCGICOUNT, &counters) == 0;
}

int CCommDriverLines::AwaitMove(int lines) {
    // The driver takes the lines themselves in place of an address.
    return ioctl(m_driver.Descriptor(), TIOCMIWAIT, static_cast<unsigned long>(lines)) == 0 ? 0
                                                                                            : errno;
}

} // namespace platform
