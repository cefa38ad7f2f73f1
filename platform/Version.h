// Which system the program runs on, as the published version call tells it. Any thread may call.
#pragma once

#include "platform/Types.h"

inline constexpr DWORD VER_PLATFORM_WIN32_WINDOWS = 1;
inline constexpr DWORD VER_PLATFORM_WIN32_NT = 2;

struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    char szCSDVersion[128];
};
static_assert(sizeof(OSVERSIONINFOA) == 148);

// Fills the record, whose size the caller has set. It says NT family: this layer offers that
// family's calls, registry paths among them, on whatever it runs. FALSE with
// ERROR_INVALID_PARAMETER (null) or ERROR_INSUFFICIENT_BUFFER (another size).
BOOL GetVersionExA(OSVERSIONINFOA* lpVersionInformation);
