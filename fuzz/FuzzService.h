// The telephony library of the fuzzers: a service whose every answer is taken from the input.
//
// Stands in for the library's loading and what else the telephony wrapper asks of the platform and
// the trace. Without BeginService there is no library. One run at a time, on one thread; answers
// run out with the input, and are then successes that tell nothing.
#pragma once

#include "platform/Types.h"

#include <span>

namespace fuzz {

// A run begins whose service answers from these bytes, which outlive it.
void BeginService(std::span<const BYTE> bytes);

// The run is over, and no telephony object is alive: nothing may be up, open or loaded.
void EndService();

// The next byte of the input, 0 behind its end; and whether there is one.
BYTE TakeByte();
bool HasBytes();

} // namespace fuzz
