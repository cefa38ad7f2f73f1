// What the test module beside the program has noted since the last call, and a Print for the tests.
#pragma once

#include "diagnostics/Debug.h"

#include <cstdlib>
#include <string>

inline std::string TakeModuleLog() {
    const char* const log = std::getenv("VXDEBUG_LOG");
    const std::string text = log ? log : "";
    unsetenv("VXDEBUG_LOG");
    return text;
}

__attribute__((format(printf, 3, 4))) inline BOOL Print(CVDebug& debug, DWORD dwLevel,
                                                        LPCSTR szFormat, ...) {
    va_list arguments;
    va_start(arguments, szFormat);
    const BOOL taken = debug.Print(dwLevel, szFormat, arguments);
    va_end(arguments);
    return taken;
}
