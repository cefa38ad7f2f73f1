// The sequences of the special keys: those of xterm, the Linux console, screen, tmux, rxvt and
// their kin, and those of the user's terminal as the system's terminfo describes it. Constant data;
// any thread may call this.
#pragma once

#include "console/ConsoleKeys.h"

namespace platform {

// Fills the table with the sequences that are known without asking.
void AddKnownKeys(CConsoleKeys& keys);

// Adds those of the terminfo entry of this terminal type, which go before the known ones; then the
// entry's other keys, which mean nothing here, as far as nothing else has their sequence. Without
// an entry nothing changes.
void AddTerminfoKeys(CConsoleKeys& keys, const char* terminalType);

} // namespace platform
