// Handles, events and waits.
//
// A handle names an object of this layer: an event, a thread, a serial port, a file, a library, the
// console's input or output. Everything that can be waited for has a file descriptor, so that a
// wait for one object, for several, or for several with the console's own needs beside them is one
// poll(). Any thread may call these. Deadlines run on the monotonic clock.
#pragma once

#include "platform/Types.h"

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;

struct SECURITY_ATTRIBUTES; // always given as null

// Ends the use of a handle. TRUE; FALSE with ERROR_INVALID_HANDLE for a closed or invented one. A
// close of a serial port or a file that could not be carried out in full returns FALSE with the
// system's reason, and the handle is closed all the same. Waits that other threads have in progress
// on the object end with WAIT_FAILED or go on; they never touch freed memory.
BOOL CloseHandle(HANDLE hObject);

// Makes an event. The name must be null. Null on failure (ERROR_TOO_MANY_OPEN_FILES,
// ERROR_NOT_ENOUGH_MEMORY).
HANDLE CreateEventA(SECURITY_ATTRIBUTES* lpEventAttributes, BOOL bManualReset, BOOL bInitialState,
                    LPCSTR lpName);

// Signal and unsignal an event. An auto-reset event is unsignalled again by exactly one satisfied
// wait; signalling a signalled event does nothing. FALSE with ERROR_INVALID_HANDLE.
BOOL SetEvent(HANDLE hEvent);
BOOL ResetEvent(HANDLE hEvent);

// Waits up to dwMilliseconds (INFINITE: no limit; 0: only looks) for an object:
//   an event:           signalled;
//   a thread:           ended;
//   a serial port:      received bytes are waiting, or the device is gone;
//   the console input:  ReadConsoleInputA would not block;
//   the console output: there is room for at least another turn's text.
// WAIT_OBJECT_0, WAIT_TIMEOUT, or WAIT_FAILED (ERROR_INVALID_HANDLE; ERROR_OPERATION_ABORTED in a
// thread that TerminateThread has ended, or that heeds the end of the program, see
// platform/objects/EndRequest.h).
//
// On the thread that has taken the console over, a wait also serves the console: output that was
// gathered is let out before the wait blocks, and console control handlers are called.
DWORD WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds);

// The same for up to MAXIMUM_WAIT_OBJECTS handles. Returns WAIT_OBJECT_0 plus the lowest index that
// is signalled; only that object's auto-reset event is consumed. bWaitAll must be FALSE, nCount
// 1 to 64, else WAIT_FAILED with ERROR_INVALID_PARAMETER.
DWORD WaitForMultipleObjects(DWORD nCount, const HANDLE* lpHandles, BOOL bWaitAll,
                             DWORD dwMilliseconds);
