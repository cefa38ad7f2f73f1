// Messages to the user while a session runs. Used from the session's thread; nothing can fail.
#pragma once

#include "platform/Types.h"

#include <string>

class CConsole;

// Formats a text of any length printf-style and shows it on the console; once the console has been
// given back it is dropped.
void ShowUser(CConsole& console, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The same for failures, which must reach the user: on standard error once the console has been
// given back, or when standard output is no terminal.
void TellUser(CConsole& console, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Says that the device is gone, by the name that the user knows it by.
void TellDeviceGone(CConsole& console, const std::string& deviceName);

// Says that a file did not open ("Cannot open", say), and why. What failed is shown on the console
// in any case, like all that a session shows, and the whole told where TellUser would tell it.
void TellFileFailure(CConsole& console, const char* failure, const std::string& file, DWORD error);

// The reason behind an error code of the platform layer, for use in a message.
const char* DescribeError(DWORD error);
