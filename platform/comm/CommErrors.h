// The driver's error counters as error bits. A pure function; any thread may call it.
#pragma once

#include "platform/Types.h"

#include <linux/serial.h>

namespace platform {

// The CE_ bits of those counters that have moved from one reading to the next, in whatever
// direction: the counters wrap.
DWORD ErrorsBetween(const serial_icounter_struct& before, const serial_icounter_struct& now);

} // namespace platform
