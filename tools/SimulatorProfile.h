// What the simulated modem is told once, at its start: how it behaves, what happens to it by itself
// and which faults it shows. Plain values; whoever owns one may copy and share it freely.
#pragma once

#include "tools/ResultCode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace modemsim {

// Milliseconds of any clock that only goes forward; the simulated modem reads no clock itself.
using TimeMs = std::int64_t;

// A dialled number that ends in these digits gives this result.
struct DialRule {
    std::string ending;
    EResult result = EResult::NoCarrier;
};

struct Faults {
    bool silent = false; // takes input, never answers
    // Goes silent once so many command lines were answered.
    std::optional<std::uint64_t> silentAfter = {};
    TimeMs delay = 0;           // before each answer
    bool split = false;         // one byte a write
    std::uint32_t garbage = 0;  // random bytes before each answer
    std::uint32_t seed = 1;     // of those random bytes
    std::uint64_t longLine = 0; // characters of an extra line before each final result
    // The device goes away after so many bytes sent.
    std::optional<std::uint64_t> vanishAfter = {};
    bool flood = false; // endless bytes without a line end
};

struct SimulatorProfile {
    bool echo = true;
    bool sim = true;
    std::string version = "0";
    std::int64_t startSeconds = 0; // calendar time at time 0, in seconds since 1970 (UTC)
    TimeMs dialTime = 1000;
    TimeMs hangUpAfter = 0; // the far end hangs up so long after CONNECT; 0: never
    TimeMs ringPeriod = 0;  // the periods: 0 is off
    std::optional<std::uint64_t> ringCount;
    int storedMessages = 0; // at the start
    TimeMs messagePeriod = 0;
    TimeMs registrationPeriod = 0;
    std::vector<DialRule> dialRules; // asked in this order, before the built-in ones
    Faults faults;
};

} // namespace modemsim
