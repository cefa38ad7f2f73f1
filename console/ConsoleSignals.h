// The signals of a process that has taken the console over.
//
// A handler only notes the signal and shows it on a descriptor; the console's thread acts on it
// during its next wait. A signal that ends the process at once first brings the terminal back:
// crashes, and everything whose usual effect is the end. A handler that somebody else has for a
// crash signal comes after ours. The signals belong to the process, so there is one set of them;
// Install and Remove are called by the thread that takes the console over.
#pragma once

#include "console/ConsoleMode.h"

namespace platform {

// What has happened since the last look, one bit each.
enum ConsoleSignal : unsigned {
    kSignalCtrlC = 1,
    kSignalBreak = 2,
    kSignalClose = 4,
    kSignalShutdown = 8,
    kSignalSize = 16,
    kSignalStop = 32,
    kSignalContinue = 64,
};

namespace consolesignals {

// Takes the signals over; mode is asked to rescue the terminal before the process ends. Without a
// descriptor left in the system the signals keep their usual effect and the terminal is rescued all
// the same.
void Install(CConsoleMode& mode);
// Brings the former effects back. Of what was noted and not looked at, what ends a program asks for
// the end once KeepForEnd was called; the rest is forgotten.
void Remove();

// Whether SIGINT, SIGQUIT, SIGHUP and SIGTERM are noted (TRUE) or end the process.
void NoteControlEvents(bool noted);

// See EndOnSignals and EndBySignal in console/Console.h. Called between Install and Remove.
void KeepForEnd();

// What was noted has been acted on without a request for the end.
void StandDown();

// A little less than three seconds from now the process ends by the last of the four that came,
// wherever it is then. Does nothing when that is so already, and before KeepForEnd.
void StartLastMoment();

void EndBySignal();

// Shows POLLIN when there is something to look at; -1 without one.
int Descriptor();
// Takes what was noted, as bits.
unsigned Take();

// Stops the process as SIGTSTP does by itself; returns when it continues.
void StopProcess();

} // namespace consolesignals
} // namespace platform
