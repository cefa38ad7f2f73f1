// The world around the guest.
#pragma once

#include <string>

// Has the host do something, over the control line, and returns its answer, a line:
//   plug, unplug    the USB adapter; "done"
//   break           on the UART's line; "done"
//   settings CHIP   what is in place in the chip, such as "19200 7E1 - DTR RTS": the speed, the
//                   format, what output waits for ("-", "CTS" or "XON"), and the lines that are up
//   moves CHIP      what DTR and RTS have done since last asked: "12ms -DTR 0ms -RTS"
// CHIP is "adapter" or "uart".
std::string AskHost(const std::string& command);
