// The report that most failures of the port make. Any thread may report; the last error stays.
#pragma once

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

// Says that the call, named as "CVSerial::Operation() - Call()", has failed, and with which error.
// FALSE, for an operation that fails with it.
inline BOOL ReportLastError(LPCSTR call) {
    DebugReport("%s failed - GetLastError() = %ld", call, static_cast<long>(GetLastError()));
    return FALSE;
}
