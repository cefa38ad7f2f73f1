// Who else has a device open, as far as /proc lets this process see. Any thread may call this; it
// blocks for as long as /proc takes to read, so it is for error messages.
#pragma once

#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace platform {

struct CommUser {
    pid_t process = 0; // 0: nobody was found
    std::string name;  // as the process gave it: untrusted bytes, at most a line
};

// The process that holds a lock on the device node, else one that has the device open: of a
// pseudo-terminal not the one that provides it.
CommUser FindCommUser(const struct stat& device);

} // namespace platform
