// The registry: one key for each serial device that is really there and no on-board port,
//   System\CurrentControlSet\Control\Class\{4D36E96D-E325-11CE-BFC1-08002BE10318}\0000 and on
// below HKEY_LOCAL_MACHINE, with one value, AttachedTo: the device's path. A key shows what was
// there when it was opened. Nothing can be changed, so any access that is asked for is granted. Any
// thread may call these.
#pragma once

#include "platform/Types.h"

struct HKEY__;
using HKEY = HKEY__*;
using REGSAM = DWORD;

inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});

inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

inline constexpr DWORD REG_SZ = 1;

// Opens a key below HKEY_LOCAL_MACHINE; the case of ASCII letters does not matter. Returns 0 with
// the key stored, or ERROR_FILE_NOT_FOUND, ERROR_INVALID_HANDLE, ERROR_INVALID_PARAMETER (null),
// ERROR_NOT_ENOUGH_MEMORY with null stored.
LONG RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired, HKEY* phkResult);

// Tells the index-th value: its name (lpcchValueName: the buffer's size in, the length without the
// NUL out), its type and its data (lpcbData: the buffer's size in, the data's with its NUL out).
// Type and data may be null. Returns 0, ERROR_NO_MORE_ITEMS, ERROR_MORE_DATA (a buffer is too
// small: nothing is copied), ERROR_INVALID_HANDLE, ERROR_INVALID_PARAMETER.
LONG RegEnumValueA(HKEY hKey, DWORD dwIndex, char* lpValueName, LPDWORD lpcchValueName,
                   LPDWORD lpReserved, LPDWORD lpType, BYTE* lpData, LPDWORD lpcbData);

// Gives a key back; a root needs not, but may be. Returns 0 or ERROR_INVALID_HANDLE.
LONG RegCloseKey(HKEY hKey);
