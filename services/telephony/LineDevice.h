// A line device of the service: what can be opened under a name.
#pragma once

#include <string>

namespace telephonyservice {

// What a caller's buffer for names holds, with room for a number behind the name.
inline constexpr std::size_t kLongestName = 200;

struct LineDevice {
    std::string name;
    std::string devicePath;
    bool isDataModem; // takes AT commands, as far as anybody knows

    friend bool operator==(const LineDevice&, const LineDevice&) = default;
};

} // namespace telephonyservice
