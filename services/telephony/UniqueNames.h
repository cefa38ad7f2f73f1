// Equal names told apart. Pure.
#pragma once

#include "services/telephony/LineDevice.h"

#include <vector>

namespace telephonyservice {

// The first of equal names stays, the next become "name 2", "name 3" in their order, passing over
// numbers that would make the name of another device.
void MakeNamesUnique(std::vector<LineDevice>& devices);

} // namespace telephonyservice
