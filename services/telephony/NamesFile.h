// What modems.conf says: one "name = device path" a line, '#' begins a comment line. Pure.
#pragma once

#include "services/telephony/LineDevice.h"

#include <string>
#include <string_view>
#include <vector>

namespace telephonyservice {

// No list that anybody writes by hand is longer; what is behind it is left out.
inline constexpr std::size_t kLongestNamesFile = std::size_t{64} * 1024;
inline constexpr std::size_t kMostNamedModems = 256;

struct NamesFileFault {
    unsigned line; // from 1
    std::string reason;

    friend bool operator==(const NamesFileFault&, const NamesFileFault&) = default;
};

// The modems in the order of the lines. Lines that are not understood are skipped and told in
// faults; of a file in UTF-16 none is, and that is the one fault. A name is plain text that does
// not read as a port's name, a path begins with '/'.
std::vector<LineDevice> ParseNamesFile(std::string_view content,
                                       std::vector<NamesFileFault>& faults);

} // namespace telephonyservice
