#include "platform/Error.h"
#include "platform/Registry.h"
#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/MakeObject.h"
#include "platform/system/RegistryKey.h"

#include <cstring>
#include <string>

namespace {

using platform::CRegistryKeyObject;

// The longest path of a key that is answered at all; the keys there are have a third of it.
constexpr std::size_t PATH_MAX_LENGTH = 255;

HANDLE ToHandle(HKEY key) {
    return reinterpret_cast<HANDLE>(key);
}

LONG ToStatus(DWORD error) {
    return static_cast<LONG>(error);
}

// False for a key that is none.
bool FindPath(HKEY key, std::string& path) {
    path.clear();
    if (key == HKEY_LOCAL_MACHINE)
        return true;
    const auto object = platform::FindHandleOf<CRegistryKeyObject>(ToHandle(key));
    if (object)
        path = object->GetPath();
    return object != nullptr;
}

LONG Open(HKEY parent, const char* subKey, HKEY& opened) {
    std::string path;
    if (!FindPath(parent, path))
        return ToStatus(ERROR_INVALID_HANDLE);
    const std::size_t length = subKey != nullptr ? strnlen(subKey, PATH_MAX_LENGTH + 1) : 0;
    if (length > PATH_MAX_LENGTH)
        return ToStatus(ERROR_FILE_NOT_FOUND);
    if (length != 0)
        path.append(path.empty() ? "" : "\\").append(subKey, length);
    auto values = platform::ReadRegistryKey(path);
    if (!values)
        return ToStatus(ERROR_FILE_NOT_FOUND);
    opened = reinterpret_cast<HKEY>(
        platform::RegisterHandle(std::make_shared<CRegistryKeyObject>(path, std::move(*values))));
    return opened != nullptr ? 0 : ToStatus(ERROR_NOT_ENOUGH_MEMORY);
}

} // namespace

LONG RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD, REGSAM, HKEY* phkResult) {
    if (phkResult == nullptr)
        return ToStatus(ERROR_INVALID_PARAMETER);
    *phkResult = nullptr;
    try {
        return Open(hKey, lpSubKey, *phkResult);
    } catch (const std::bad_alloc&) {
        return ToStatus(ERROR_NOT_ENOUGH_MEMORY);
    }
}

LONG RegEnumValueA(HKEY hKey, DWORD dwIndex, char* lpValueName, LPDWORD lpcchValueName,
                   LPDWORD lpReserved, LPDWORD lpType, BYTE* lpData, LPDWORD lpcbData) {
    if (lpValueName == nullptr || lpcchValueName == nullptr || lpReserved != nullptr ||
        (lpData != nullptr && lpcbData == nullptr))
        return ToStatus(ERROR_INVALID_PARAMETER);
    // The root has no values.
    if (hKey == HKEY_LOCAL_MACHINE)
        return ToStatus(ERROR_NO_MORE_ITEMS);
    const auto key = platform::FindHandleOf<CRegistryKeyObject>(ToHandle(hKey));
    if (!key)
        return ToStatus(ERROR_INVALID_HANDLE);
    if (dwIndex >= key->GetValues().size())
        return ToStatus(ERROR_NO_MORE_ITEMS);

    const auto& [name, text] = key->GetValues()[dwIndex];
    const auto dataSize = static_cast<DWORD>(text.size() + 1);
    const bool isDataCut = lpData != nullptr && *lpcbData < dataSize;
    if (lpcbData != nullptr)
        *lpcbData = dataSize;
    if (*lpcchValueName <= name.size() || isDataCut)
        return ToStatus(ERROR_MORE_DATA);
    std::memcpy(lpValueName, name.c_str(), name.size() + 1);
    *lpcchValueName = static_cast<DWORD>(name.size());
    if (lpType != nullptr)
        *lpType = REG_SZ;
    if (lpData != nullptr)
        std::memcpy(lpData, text.c_str(), dataSize);
    return 0;
}

LONG RegCloseKey(HKEY hKey) {
    if (hKey == HKEY_LOCAL_MACHINE)
        return 0;
    if (!platform::FindHandleOf<CRegistryKeyObject>(ToHandle(hKey)))
        return ToStatus(ERROR_INVALID_HANDLE);
    return CloseHandle(ToHandle(hKey)) ? 0 : ToStatus(ERROR_INVALID_HANDLE);
}
