// The two menus of the interactive terminal, and the baud rate they and the session set.
//
// Called on the session's thread. A menu waits for one character; meanwhile the device's bytes stay
// where they are. It ends without a word when the console is given back, the input ends, or the
// device is gone.
#pragma once

#include "platform/Types.h"

class CTermConsole;
class CVModem;

// F5: sets the baud rate that the user picks.
void BaudMenu(CVModem& modem, CTermConsole& console);

// F6: sets the flow control that the user picks.
void FlowMenu(CVModem& modem, CTermConsole& console);

// Sets the baud rate, keeps parity, data and stop bits, and tells the user whether it worked.
void ApplyBaudRate(CVModem& modem, CTermConsole& console, int baudRate);
