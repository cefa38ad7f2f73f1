// The platform of the fuzzers: files, time and waits that are nobody's but the input's.
//
// Stands in for those calls of platform/, whose names it defines: it is linked first. The rest is
// the platform's own. One run at a time, on one thread. Files are objects in memory: a handle that
// is used after its end, or never closed, is the address sanitizer's finding.
#pragma once

#include "platform/Types.h"

#include <span>

namespace fuzz {

// The only path that leads to the script.
inline constexpr LPCSTR kScriptPath = "script";

// What the input is made of: the script, which ends at its first 0xFF byte for the engine too, and
// behind that what the device sends. The script keeps the whole input, so that what the engine does
// behind an early end is tried as well.
std::span<const BYTE> DeviceBytesOf(std::span<const BYTE> input);

// A run begins: the clock stands at 0, the input is the script. Any other path that is not empty
// leads to a file with the device's bytes.
void BeginRun(std::span<const BYTE> input);

// Ends the program, as a finding, unless the condition holds.
void Require(bool condition);

} // namespace fuzz
