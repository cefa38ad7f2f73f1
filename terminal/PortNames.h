// The names of the serial ports of this machine. Used from the main thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Sorted: shorter names first, those of equal length in the order of their bytes; none twice.
using PortNames = std::vector<std::string>;

// Puts a name where it belongs, unless it is there.
void AddPortName(PortNames& names, std::string_view name);

// Makes the list anew: the serial devices that are there ("COM1", or a path).
void EnumerateComPorts(PortNames& names);
