// How a device is named: which names are serial ports, and what a port's path is.
//
// Pure functions; any thread may call them, nothing can fail.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// Turns what the user typed into a device name. A name that begins with "COM" in any case becomes a
// port name ("COM1:" up to 9, "\\.\COM12" above); any other name, a path among them, stays as it
// is.
std::string MakeDeviceName(std::string_view name);

// TRUE for port names: five characters that begin with "COM" in any case, a name that holds
// "\\.\COM", or the path of a serial device, which begins with '/'. FALSE for names of modems.
BOOL IsComPort(std::string_view deviceName);

// What the user is shown for a port: "COM1" for "COM1:", "COM12" for "\\.\COM12", a path as it is.
std::string GetPortDisplayName(std::string_view deviceName);
