// Messages to the user while a session runs. Used from the session's thread; nothing can fail.
#pragma once

#include "platform/Types.h"

#include <string>

class CConsole;

// Formats a text of any length printf-style and shows it on the console; once the console has been
// given back it is dropped.
void ShowUser(CConsole& console, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The same for failures, which must reach the user: on standard error once the console has been
// given back.
void TellUser(CConsole& console, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Says that the device is gone, by the name that the user knows it by.
void TellDeviceGone(CConsole& console, const std::string& deviceName);

// Why a file did not open, which was just told, as a line of its own.
void TellReason(CConsole& console, DWORD error, const std::string& file);

// The reason behind an error code of the platform layer, for use in a message.
const char* DescribeError(DWORD error);
