// Tells the user why a device did not open. Used from the session's thread, before the console is
// taken over.
#pragma once

#include "platform/Types.h"

#include <string>

class CVModem;

// Why there is no telephony service and what helps, without a line end.
const char* ExplainMissingTelephony();

// Says on standard error what went wrong with which device and what helps, then shows that the
// device cannot be opened and waits for Enter. The error is the platform layer's, as it was when
// the opening failed; modem is the one that failed to open, title what the user knows it by.
void ReportOpenFailure(const CVModem& modem, const std::string& deviceName,
                       const std::string& title, DWORD error);
