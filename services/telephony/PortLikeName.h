// Names that a user cannot choose a modem by, because they mean a serial port. Pure.
#pragma once

#include <string_view>

namespace telephonyservice {

// Paths (with a '/' at the front or after dots, or without a blank), names in the device namespace
// or with a port of it inside, and all that begins with "COM" in either case.
inline bool ReadsAsPort(std::string_view name) {
    constexpr std::string_view kPortPrefix = "com";
    constexpr std::string_view kNamespacePort = R"(\\.\COM)";
    const bool isPath = name.find('/') != std::string_view::npos &&
                        (name.find(' ') == std::string_view::npos || name.starts_with("./") ||
                         name.starts_with("../"));
    if (isPath || name.starts_with('/') || name.starts_with('\\') ||
        name.find(kNamespacePort) != std::string_view::npos)
        return true;
    if (name.size() < kPortPrefix.size())
        return false;
    for (std::size_t at = 0; at < kPortPrefix.size(); ++at) {
        if (name[at] != kPortPrefix[at] && name[at] + ('a' - 'A') != kPortPrefix[at])
            return false;
    }
    return true;
}

} // namespace telephonyservice
