// The module trace: what the modem layer tells the optional debug module (see CVDebug).
//
// Both objects live from before the entry point to the exit of the process. Any thread may trace.
// Without the module a trace is a test of a flag.
#pragma once

#include "diagnostics/Debug.h"

// Every trace goes through this one. It knows its name once DebugSetModuleName was called.
extern CVDebug g_AppDebug;

// Named by those who own a telephony object; nothing is output through it.
extern CVDebug g_TapiDebug;

// Names g_AppDebug, see CVDebug::SetModuleName.
void DebugSetModuleName(LPCSTR szModuleName);

// Output a text, formatted printf-style, at the trace or the error level. TRUE when the debug
// module took it.
BOOL DebugTrace(LPCSTR szFormat, ...) __attribute__((format(printf, 1, 2)));
BOOL DebugError(LPCSTR szFormat, ...) __attribute__((format(printf, 1, 2)));
