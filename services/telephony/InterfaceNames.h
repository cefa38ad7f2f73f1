// From the database's properties to line devices: names, and who takes AT commands. Pure.
#pragma once

#include "services/telephony/LineDevice.h"
#include "services/telephony/SerialInterface.h"

#include <vector>

namespace telephonyservice {

// The line devices in the order of the sysfs paths. The name is maker and model and, where one
// device has several interfaces, what this one is for or its number. Equal names are left equal.
std::vector<LineDevice> NameInterfaces(std::vector<SerialInterface> interfaces);

} // namespace telephonyservice
