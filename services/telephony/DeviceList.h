// The line devices there are at the moment: the named ones, then those of the device database. Any
// thread may call.
#pragma once

#include "services/telephony/LineDevice.h"

#include <vector>

namespace telephonyservice {

// In the same order, and under the same names, as long as the files and the devices stay.
std::vector<LineDevice> ListLineDevices();

} // namespace telephonyservice
