// The three standard streams: when the one who started the program has closed some of them, and
// whether they are terminals.
#pragma once

#include <cstddef>

namespace platform {

// Opens what is closed: standard input at its end, standard output on a device that takes nothing,
// standard error on one that takes everything. Else the device or an event would get that number,
// and be read as the keyboard or written to as the screen. Before anything else is opened, by the
// main thread. A stream that cannot be opened stays closed.
void OpenClosedStreams();

// Whether standard output is a terminal, where the user sees what is written to it.
bool IsOutputTerminal();

// How many columns the terminal has that standard error is; 0 when it is none, 80 when it does not
// tell.
std::size_t ErrorColumns();

// Whether standard error takes something within a moment: it is there, and not stuck.
bool IsErrorReady();

} // namespace platform
