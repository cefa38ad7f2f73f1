#include "platform/Version.h"

#include "platform/Error.h"

namespace {

// The first of the family with all the calls that are here.
constexpr DWORD kFamilyVersion = 5;

} // namespace

BOOL GetVersionExA(OSVERSIONINFOA* lpVersionInformation) {
    if (lpVersionInformation == nullptr)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    if (lpVersionInformation->dwOSVersionInfoSize != sizeof(OSVERSIONINFOA))
        return platform::FailWith(ERROR_INSUFFICIENT_BUFFER);
    *lpVersionInformation = {
        sizeof(OSVERSIONINFOA), kFamilyVersion, 0, 0, VER_PLATFORM_WIN32_NT, {}};
    return TRUE;
}
