// What the modules that were loaded at run time tell the user, as lines on standard error.
//
// Modules tell on any thread; the functions are for the main thread.
#pragma once

#include "platform/Types.h"

#include <string>

// Takes the notices from now on, to the end of the process. News are told as they come.
void ListenToModules();

// Tells what the modules have found to be set up wrongly, each thing once; at most 20 lines.
void TellModuleFaults();

// Keeps the news, because the screen is drawn on, until they are told on the next call; at most 20
// of them.
void HoldModuleNews();
void TellModuleNews();

// For who draws on the screen: signalled while there are news kept, and the lines, which are then
// told.
HANDLE GetModuleNewsEvent();
std::string TakeModuleNews();
