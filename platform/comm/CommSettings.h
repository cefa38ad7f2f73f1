// The line settings: what a DCB says, in the kernel's terms and back.
//
// Pure functions; any thread may call them. This header brings the kernel's own termios2 in, which
// shares its names with <termios.h>: no file includes both.
#pragma once

#include "platform/Comm.h"

#include <asm/termbits.h>

namespace platform {

// Makes the settings found at opening 8-bit clean in both directions: speed, parity, data and stop
// bits and hardware flow control stay, software flow control stays where somebody chose it.
void MakeRaw(termios2& settings);

// What the settings are as a DCB. The line controls are ENABLE, or HANDSHAKE with hardware flow
// control.
DCB DcbOfSettings(const termios2& settings);

// Puts the DCB's speed, format and flow control into the settings and leaves all else alone. False
// when the kernel has no such setting; the settings are then untouched.
bool ApplyDcb(const DCB& dcb, termios2& settings);

// True when the settings in place are those asked for: a speed within 3 %, the same format (not
// looked at on a pseudo-terminal, which has none) and the same flow control.
bool AreSettingsTaken(const termios2& asked, const termios2& inPlace, bool pseudoTerminal);

} // namespace platform
