// Libraries that are loaded at run time. Any thread may call these.
#pragma once

#include "platform/Types.h"

using HMODULE = void*;
using HINSTANCE = HMODULE;
using FARPROC = void (*)();

// Loads a library by its published name and returns its handle, or null with ERROR_MOD_NOT_FOUND.
// The name's ending is dropped, the rest becomes lower case: "VXDebug.dll" is libvxdebug.so. It is
// looked for beside the program, in ../lib/wirelet from there, then as the loader does. A name that
// holds a '/' is refused: a library is never taken from a path that a caller has pieced together.
HMODULE LoadLibraryA(LPCSTR lpLibFileName);

// The address of an export, or null with ERROR_PROC_NOT_FOUND (ERROR_INVALID_HANDLE for a null
// library).
FARPROC GetProcAddress(HMODULE hModule, LPCSTR lpProcName);

// The program itself, for the calls that want to know who asks; nothing to free. Only a null name
// is answered: others give null with ERROR_MOD_NOT_FOUND.
HMODULE GetModuleHandleA(LPCSTR lpModuleName);

// Gives one load of the library back. FALSE with ERROR_INVALID_HANDLE.
BOOL FreeLibrary(HMODULE hLibModule);
