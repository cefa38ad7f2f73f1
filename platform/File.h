// Files, and what files and serial ports share: opening, reading and writing.
//
// Any thread may call these; one transfer at a time and direction on one handle.
#pragma once

#include "platform/Types.h"
#include "platform/Wait.h"

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 0x00000001;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;
inline constexpr DWORD FILE_FLAG_OVERLAPPED = 0x40000000;

// The record of one overlapped transfer. hEvent is unsignalled while the transfer is pending and
// signalled when it has ended. Internal and InternalHigh hold its error code and byte count.
struct OVERLAPPED {
    std::uintptr_t Internal;
    std::uintptr_t InternalHigh;
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};

// Opens a file or a serial port; INVALID_HANDLE_VALUE on failure.
//
// With FILE_FLAG_OVERLAPPED and OPEN_EXISTING it is a serial port, see platform/Comm.h: "COMn",
// "COMn:" and "\\.\COMn" are /dev/ttyS(n-1), a name that begins with '/' is the device's path.
// Otherwise it is a file: CREATE_ALWAYS makes it or empties it, OPEN_EXISTING opens it. Without
// FILE_SHARE_READ nobody else who asks for the same may have it open, nor one who opened it with
// FILE_SHARE_READ before (an advisory lock).
//
// Errors: ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED (no permission; a
// directory; a port in use; as a port, a terminal that a standard stream is on),
// ERROR_SHARING_VIOLATION (a file in use), ERROR_NOT_SUPPORTED (a port's name leads to something
// that is no serial device), ERROR_DEVICE_NOT_CONNECTED (a device node whose device is gone).
HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                   SECURITY_ATTRIBUTES* lpSecurityAttributes, DWORD dwCreationDisposition,
                   DWORD dwFlagsAndAttributes, HANDLE hTemplateFile);

// Reads up to nNumberOfBytesToRead bytes. A file: TRUE, 0 bytes at its end. A serial port: see
// platform/Comm.h. FALSE with ERROR_READ_FAULT, ERROR_INVALID_HANDLE, or the port's errors.
BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
              LPDWORD lpNumberOfBytesRead, OVERLAPPED* lpOverlapped);

// Writes all of the bytes to a file; TRUE. FALSE with ERROR_DISK_FULL, ERROR_WRITE_FAULT, or
// ERROR_TIMEOUT (a FIFO or a terminal has taken none for ten seconds), and the count of the bytes
// that went out before it. A serial port: see platform/Comm.h.
BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
               LPDWORD lpNumberOfBytesWritten, OVERLAPPED* lpOverlapped);

// Tells, or with bWait TRUE awaits, the end of an overlapped transfer that was left pending. TRUE
// with the bytes moved; FALSE with ERROR_IO_INCOMPLETE (not done, bWait FALSE),
// ERROR_OPERATION_ABORTED (purged, closed, or the waiting thread was terminated),
// ERROR_DEVICE_NOT_CONNECTED.
BOOL GetOverlappedResult(HANDLE hFile, OVERLAPPED* lpOverlapped, LPDWORD lpNumberOfBytesTransferred,
                         BOOL bWait);

namespace platform {

// Whether the name leads to a folder.
bool IsFolder(LPCSTR name);

// Whether both names lead to one file that is there.
bool IsSameFile(LPCSTR name, LPCSTR other);

} // namespace platform
