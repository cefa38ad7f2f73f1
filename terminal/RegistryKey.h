// CRegistryKey: an open key of the registry, with an owner. Used from one thread at a time; closes
// itself.
#pragma once

#include "platform/Registry.h"

class CRegistryKey {
  public:
    CRegistryKey() = default;
    ~CRegistryKey() { Close(); }
    CRegistryKey(const CRegistryKey&) = delete;
    CRegistryKey& operator=(const CRegistryKey&) = delete;

    // Closes any open key, then opens that one. FALSE when there is none.
    BOOL Open(HKEY parent, LPCSTR subKey, REGSAM access);

    // The index-th value: its name, and its data unless the data buffer is null; capacities in
    // bytes, both texts NUL-terminated. FALSE when there is no such value, it is no text, or it
    // does not fit.
    BOOL EnumValue(DWORD index, char* name, DWORD nameCapacity, char* data, DWORD dataCapacity);

    void Close();

  private:
    HKEY m_hKey = nullptr;
};
