// The numbered menu from which the user picks a device when none was named.
//
// Runs on the main thread before the console is taken over, on standard input and output.
#pragma once

#include <string>
#include <variant>

// Of the program.
inline constexpr int kExitDone = 0;

// The program's exit code (0: the user wants none, or standard input is closed; 1: no telephony
// service; 2: no device), or the name of the device to open.
using DeviceSelection = std::variant<int, std::string>;

DeviceSelection SelectDevice();
