#include "terminal/RegistryKey.h"

#include <utility>

BOOL CRegistryKey::Open(HKEY parent, LPCSTR subKey, REGSAM access) {
    Close();
    return RegOpenKeyExA(parent, subKey, 0, access, &m_hKey) == 0;
}

BOOL CRegistryKey::EnumValue(DWORD index, char* name, DWORD nameCapacity, char* data,
                             DWORD dataCapacity) {
    DWORD type = REG_SZ;
    const LONG status =
        RegEnumValueA(m_hKey, index, name, &nameCapacity, nullptr, &type,
                      reinterpret_cast<BYTE*>(data), data != nullptr ? &dataCapacity : nullptr);
    return status == 0 && type == REG_SZ;
}

void CRegistryKey::Close() {
    if (const HKEY key = std::exchange(m_hKey, nullptr))
        RegCloseKey(key);
}
