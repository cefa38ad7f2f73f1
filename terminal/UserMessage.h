// Messages to the user while a session runs. Used from the session's thread; nothing can fail.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

class CConsole;

// Shows a text on the console; once the console has been given back it is dropped.
void ShowUser(CConsole& console, std::string_view text);

// The same for failures, which must reach the user: on standard error once the console has been
// given back, or when standard output is no terminal.
void TellUser(CConsole& console, std::string_view text);

// Says what could not be done with a file that is open ("Cannot read", say), and why.
void TellFileError(CConsole& console, std::string_view failure, const std::string& file,
                   DWORD error);

// Says that the device is gone, by the name that the user knows it by.
void TellDeviceGone(CConsole& console, const std::string& deviceName);

// Says that a file did not open ("Cannot open", say), and why. What failed is shown on the console
// in any case, like all that a session shows, and the whole told where TellUser would tell it.
void TellFileFailure(CConsole& console, const char* failure, const std::string& file, DWORD error);

// The reason behind an error code of the platform layer, for use in a message.
const char* DescribeError(DWORD error);
