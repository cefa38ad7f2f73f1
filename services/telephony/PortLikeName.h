// Names that a user cannot choose a modem by, because they mean a serial port. Pure.
#pragma once

#include <string_view>

namespace telephonyservice {

// Paths (with a '/' at the front or after dots, or without a blank), names in the device namespace
// or with a port of it inside, and all that begins with "COM" in either case.
inline bool ReadsAsPort(std::string_view name) {
    constexpr std::string_view PORT_PREFIX = "com";
    constexpr std::string_view NAMESPACE_PORT = R"(\\.\COM)";
    const bool isPath = name.find('/') != std::string_view::npos &&
                        (name.find(' ') == std::string_view::npos || name.starts_with("./") ||
                         name.starts_with("../"));
    if (isPath || name.starts_with('/') || name.starts_with('\\') ||
        name.find(NAMESPACE_PORT) != std::string_view::npos)
        return true;
    if (name.size() < PORT_PREFIX.size())
        return false;
    for (std::size_t at = 0; at < PORT_PREFIX.size(); ++at) {
        if (name[at] != PORT_PREFIX[at] && name[at] + ('a' - 'A') != PORT_PREFIX[at])
            return false;
    }
    return true;
}

} // namespace telephonyservice
