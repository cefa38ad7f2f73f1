// The machine as a test wants it: without devices, the system's bus and the administrator's files,
// and with the serial interfaces that the test makes up.
//
// A mount namespace of the calling thread's own, for the rest of the process; threads and processes
// started later live in it too. Real devices stay as they are: what the kernel and the device
// database tell of them is hidden, not /dev.
#pragma once

#include <map>
#include <string>
#include <vector>

// A serial interface, as the kernel and the database would tell of it.
struct FakeInterface {
    std::string name;            // "ttyUSB0"
    std::string node;            // below /dev; a pseudo-terminal serves as well
    std::string hardware = "";   // the USB device, "1-2"; empty for an on-board port
    std::string number = "00";   // of the interface in its device
    std::string kind = "ffffff"; // class, subclass and protocol
    std::string role = "";       // what the device calls the interface
    std::map<std::string, std::string> properties = {};
};

class CDeviceNamespace {
  public:
    // Enters it, once for the process. Empty; or, with nothing changed, why that cannot be: many
    // containers forbid it, and so may the system to all but root.
    static const std::string& Enter();

    // Puts these in place of the interfaces before.
    static void SetInterfaces(const std::vector<FakeInterface>& interfaces);
};
