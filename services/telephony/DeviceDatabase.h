// The serial interfaces that the device database knows. Any thread may call.
#pragma once

#include "services/telephony/SerialInterface.h"

#include <vector>

namespace telephonyservice {

// USB serial and CDC-ACM interfaces and PCI modems that have a device node. On-board ports are not
// among them: what is behind those nobody knows. Empty when the database cannot be read.
std::vector<SerialInterface> ListSerialInterfaces();

} // namespace telephonyservice
