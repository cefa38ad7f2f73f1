// The last error of the calling thread, and the codes that this layer sets.
//
// Each thread has its own value; a call that succeeds leaves it alone. Any thread may call these.
#pragma once

#include "platform/Types.h"

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;      // no such file, device or library
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;      // a folder on the way is missing
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4; // no descriptor left
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;       // no permission, a directory, in use
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;      // closed, invented, or of the wrong kind
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_WRITE_FAULT = 29;
inline constexpr DWORD ERROR_READ_FAULT = 30;
inline constexpr DWORD ERROR_GEN_FAILURE = 31; // a failure of the system with no code of its own
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_HANDLE_EOF = 38;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_BUSY = 170;              // another one uses it and does not let go
inline constexpr DWORD ERROR_MORE_DATA = 234;         // the buffer is too small
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;     // the index is past the last one
inline constexpr DWORD ERROR_OPERATION_ABORTED = 995; // a purge or a close ended a pending transfer
inline constexpr DWORD ERROR_IO_INCOMPLETE = 996;     // asked without waiting, not done yet
inline constexpr DWORD ERROR_IO_PENDING = 997;        // started; GetOverlappedResult completes it
inline constexpr DWORD ERROR_DEVICE_NOT_CONNECTED = 1167;  // unplugged, hung up, other end closed
inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400; // no window, or no longer
inline constexpr DWORD ERROR_CANNOT_FIND_WND_CLASS = 1407;
inline constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;
inline constexpr DWORD ERROR_CLASS_DOES_NOT_EXIST = 1411;
inline constexpr DWORD ERROR_CLASS_HAS_WINDOWS = 1412;
inline constexpr DWORD ERROR_INVALID_INDEX = 1413;
inline constexpr DWORD ERROR_INVALID_THREAD_ID = 1444; // the thread has ended
inline constexpr DWORD ERROR_TIMEOUT = 1460;
inline constexpr DWORD ERROR_NOT_ENOUGH_QUOTA = 1816; // a message queue is full

// Returns the code of the calling thread's last failed call; ERROR_SUCCESS when none has failed.
DWORD GetLastError();

// Sets the calling thread's code.
void SetLastError(DWORD dwErrCode);

namespace platform {

// The code of this layer for an errno value; ERROR_GEN_FAILURE for values without one.
DWORD ErrorFromErrno(int systemError);

// SetLastError(ErrorFromErrno(errno)); returns FALSE so that a failing call can end with it.
BOOL FailWithErrno();

// SetLastError(code); returns FALSE.
BOOL FailWith(DWORD code);

} // namespace platform
