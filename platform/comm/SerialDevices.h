// The serial devices that are really there, as the kernel tells in sysfs. Any thread may call.
#pragma once

#include <string>
#include <vector>

namespace platform {

struct SerialDevice {
    std::string name; // the kernel's, such as "ttyUSB0"
    bool isOnBoard;   // one of the fixed ports, ttyS0 and on

    // How the device is opened: "COM1" for ttyS0, the path for all that are not on board.
    std::string GetPortName() const;
};

// Those of the folder that have hardware behind them (a UART that has no type was never found), in
// the order of their names, numbers by value. Left out are the system's own consoles. Empty when
// the folder cannot be read.
std::vector<SerialDevice> ListSerialDevices(const std::string& folder = "/sys/class/tty");

} // namespace platform
