// Which terminal a device is: a pseudo-terminal, or the user's own, which is no device to talk to.
// Any thread may ask. Nothing outside platform/ and console/
// includes this header.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

namespace platform {

// Whether the device number is that of the end of a pseudo-terminal that has a name.
bool IsPseudoTerminal(dev_t device);

// Whether the two are one terminal.
bool AreSameTerminal(const struct stat& one, const struct stat& two);

// Whether the device is a terminal that one of the program's standard streams is on, or /dev/tty.
bool IsOwnTerminal(const struct stat& device);

} // namespace platform
