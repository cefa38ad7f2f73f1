#include "platform/Error.h"
#include "platform/Registry.h"
#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/MakeObject.h"
#include "platform/system/ModemKey.h"

#include <cstring>

namespace {

using platform::CModemKey;

constexpr char kAttachedTo[] = "AttachedTo";

LONG ToStatus(DWORD error) {
    return static_cast<LONG>(error);
}

} // namespace

LONG RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD, REGSAM, HKEY* phkResult) {
    if (phkResult == nullptr)
        return ToStatus(ERROR_INVALID_PARAMETER);
    *phkResult = nullptr;
    if (hKey != HKEY_LOCAL_MACHINE)
        return ToStatus(ERROR_INVALID_HANDLE);
    const auto key = platform::OrNoMemory(
        [&] { return platform::OpenModemKey(lpSubKey != nullptr ? lpSubKey : ""); });
    *phkResult = reinterpret_cast<HKEY>(platform::RegisterHandle(key));
    return *phkResult != nullptr ? 0 : ToStatus(GetLastError());
}

LONG RegEnumValueA(HKEY hKey, DWORD dwIndex, char* lpValueName, LPDWORD lpcchValueName,
                   LPDWORD lpReserved, LPDWORD lpType, BYTE* lpData, LPDWORD lpcbData) {
    if (lpValueName == nullptr || lpcchValueName == nullptr || lpReserved != nullptr ||
        (lpData != nullptr && lpcbData == nullptr))
        return ToStatus(ERROR_INVALID_PARAMETER);
    const auto key = platform::FindHandleOf<CModemKey>(reinterpret_cast<HANDLE>(hKey));
    if (!key)
        return ToStatus(ERROR_INVALID_HANDLE);
    if (dwIndex != 0)
        return ToStatus(ERROR_NO_MORE_ITEMS);

    const auto dataSize = static_cast<DWORD>(key->AttachedTo().size() + 1);
    const bool isDataCut = lpData != nullptr && *lpcbData < dataSize;
    if (lpcbData != nullptr)
        *lpcbData = dataSize;
    if (*lpcchValueName < sizeof kAttachedTo || isDataCut)
        return ToStatus(ERROR_MORE_DATA);
    std::memcpy(lpValueName, kAttachedTo, sizeof kAttachedTo);
    *lpcchValueName = sizeof kAttachedTo - 1;
    if (lpType != nullptr)
        *lpType = REG_SZ;
    if (lpData != nullptr)
        std::memcpy(lpData, key->AttachedTo().c_str(), dataSize);
    return 0;
}

LONG RegCloseKey(HKEY hKey) {
    const HANDLE handle = reinterpret_cast<HANDLE>(hKey);
    const bool isClosed = platform::FindHandleOf<CModemKey>(handle) && CloseHandle(handle);
    return isClosed || hKey == HKEY_LOCAL_MACHINE ? 0 : ToStatus(ERROR_INVALID_HANDLE);
}
