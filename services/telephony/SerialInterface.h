// What the device database tells of one serial interface, as it is: hostile text among it.
#pragma once

#include <set>
#include <string>

namespace telephonyservice {

struct SerialInterface {
    std::string sysfsPath;
    std::string devicePath; // "/dev/ttyUSB0"
    std::string hardware;   // the sysfs path of the USB or PCI device: the same for its interfaces
    std::string maker;      // the database's names; empty when it does not know the device
    std::string model;
    std::string encodedMaker; // the device's own, bytes other than letters as "\x20"
    std::string encodedModel;
    std::string role;           // what the device calls the interface
    std::string number;         // its number in the device, two hexadecimal digits
    std::string acmProtocol;    // the protocol of a CDC-ACM interface, hexadecimal; else empty
    std::set<std::string> tags; // the ID_MM_ properties that are set to 1
};

} // namespace telephonyservice
