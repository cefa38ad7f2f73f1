// A session: one device, one console, one of the modes of work.
//
// RunSession owns both for its whole run, on its stack, and returns when the mode has ended, the
// console is given back and the device closed. Called once, from main, on the main thread.
#pragma once

#include <string>

// Opens the device and works with it: a script (-S), a command file (-A) or the interactive
// terminal. A baud rate of 0 is the default: 19200 for a port. A device that cannot be opened is
// reported, with what helps, and ends the session after Enter.
void RunSession(const std::string& deviceName, int baudRate);
