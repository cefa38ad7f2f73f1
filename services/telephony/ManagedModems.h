// Reads the modem manager's list of its modems.
#pragma once

#include <systemd/sd-bus.h>

#include <string>

namespace telephonyservice {

// The name of the device whose modem has the port ("ttyUSB0"), from the manager's answer; empty
// when there is none, or when the answer is no such list.
std::string FindManagedDevice(sd_bus_message* answer, const std::string& port);

} // namespace telephonyservice
