#include "diagnostics/ModuleTrace.h"

CVDebug g_AppDebug(nullptr);
CVDebug g_TapiDebug(nullptr);

void DebugSetModuleName(LPCSTR szModuleName) {
    g_AppDebug.SetModuleName(szModuleName);
}

BOOL DebugTrace(LPCSTR szFormat, ...) {
    va_list arguments;
    va_start(arguments, szFormat);
    const BOOL taken = g_AppDebug.Print(DEBUG_LEVEL_TRACE, szFormat, arguments);
    va_end(arguments);
    return taken;
}

BOOL DebugError(LPCSTR szFormat, ...) {
    va_list arguments;
    va_start(arguments, szFormat);
    const BOOL taken = g_AppDebug.Print(DEBUG_LEVEL_ERROR, szFormat, arguments);
    va_end(arguments);
    return taken;
}
