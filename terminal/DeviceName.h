// How a device is named: which names are serial ports, and what a port's path is.
//
// Any thread may call the functions, nothing can fail; all but GetPortPath are pure.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// Turns what the user typed into a device name. A name that begins with "COM" in any case becomes a
// port name ("COM1:" up to 9, "\\.\COM12" above); any other name, a path among them, stays as it
// is.
std::string MakeDeviceName(std::string_view name);

// TRUE for port names: five characters that begin with "COM" in any case, a name that holds
// "\\.\COM", or the path of a serial device: it begins with '/', "./" or "../", or has a '/' and no
// blank. FALSE for names of modems.
BOOL IsComPort(std::string_view deviceName);

// What a port is opened by: a relative path becomes one from the root, all else stays as it is.
std::string GetPortPath(std::string_view deviceName);

// What the user is shown for a port: "COM1" for "COM1:", "COM12" for "\\.\COM12", a path as it is.
std::string GetPortDisplayName(std::string_view deviceName);
