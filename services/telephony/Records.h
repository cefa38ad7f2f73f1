// The records that tell of a line device and its calls. Pure functions.
//
// Each answers 0, also when the variable part did not fit, and LINEERR_STRUCTURETOOSMALL when not
// even the fixed part did. The records are not null.
#pragma once

#include "services/telephony/LineDevice.h"
#include "telephony/TapiRecords.h"

namespace telephonyservice {

// The line's name, and the device's path in the part for what is specific to the device, both with
// a NUL.
LONG FillDevCaps(const LineDevice& device, LINEDEVCAPS* caps);

// The media modes of a line.
DWORD MediaModesOf(const LineDevice& device);

// The path alone, as text.
LONG FillPortName(const LineDevice& device, VARSTRING* identifier);

// The 32-bit handle and the path behind it. filled tells whether they are in the record.
LONG FillPortHandle(const LineDevice& device, HANDLE port, VARSTRING* identifier, bool& filled);

} // namespace telephonyservice
