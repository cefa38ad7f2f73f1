// The three standard streams, when the one who started the program has closed some of them.
#pragma once

namespace platform {

// Opens what is closed: standard input at its end, standard output on a device that takes nothing,
// standard error on one that takes everything. Else the device or an event would get that number,
// and be read as the keyboard or written to as the screen. Before anything else is opened, by the
// main thread. A stream that cannot be opened stays closed.
void OpenClosedStreams();

} // namespace platform
