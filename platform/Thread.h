// Threads, critical sections and interlocked counters.
//
// Any thread may call these. A thread object lives until its handle is closed and the thread has
// ended; closing the handle does not end the thread.
#pragma once

#include "platform/Types.h"
#include "platform/Wait.h"

#include <pthread.h>

using LPTHREAD_START_ROUTINE = DWORD (*)(LPVOID lpThreadParameter);

inline constexpr int THREAD_PRIORITY_LOWEST = -2;
inline constexpr int THREAD_PRIORITY_BELOW_NORMAL = -1;
inline constexpr int THREAD_PRIORITY_NORMAL = 0;
inline constexpr int THREAD_PRIORITY_ABOVE_NORMAL = 1;

inline constexpr DWORD CREATE_SUSPENDED = 0x0004;

// Starts a thread that runs lpStartAddress(lpParameter); dwStackSize 0 is the default size,
// dwCreationFlags is 0 or CREATE_SUSPENDED: the thread then runs nothing before ResumeThread. The
// identifier is stored when lpThreadId is given. Signals are blocked in the new thread: they belong
// to the threads that were there before. Null on failure
// (ERROR_NOT_ENOUGH_MEMORY, ERROR_TOO_MANY_OPEN_FILES, ERROR_INVALID_PARAMETER).
HANDLE CreateThread(SECURITY_ATTRIBUTES* lpThreadAttributes, std::size_t dwStackSize,
                    LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter,
                    DWORD dwCreationFlags, LPDWORD lpThreadId);

// Lets a thread that was created suspended run. Returns how often it was suspended: 1, and 0 for a
// thread that runs already; 0xFFFFFFFF with ERROR_INVALID_HANDLE.
DWORD ResumeThread(HANDLE hThread);

// A pseudo-handle for the calling thread; it needs no closing and is of use to SetThreadPriority.
HANDLE GetCurrentThread();

// Asks for a scheduling priority, as a nice value. An unprivileged process may not raise it; that
// is the administrator's decision and not a failure, the thread then runs on as it is. FALSE with
// ERROR_INVALID_HANDLE or, for another value than the four above, ERROR_INVALID_PARAMETER.
BOOL SetThreadPriority(HANDLE hThread, int nPriority);

// Ends another thread: its exit code becomes dwExitCode, and every wait and every pending transfer
// of that thread fails at once with ERROR_OPERATION_ABORTED, so that its procedure runs to its end.
// A thread that never comes to a wait is left running; nothing is torn from under it. One that is
// still suspended never runs its procedure. FALSE with
// ERROR_INVALID_HANDLE.
BOOL TerminateThread(HANDLE hThread, DWORD dwExitCode);

// A lock that its holder may take again. It must not be moved or copied once initialised.
struct CRITICAL_SECTION {
    pthread_mutex_t mutex;
};

void InitializeCriticalSection(CRITICAL_SECTION* lpCriticalSection);
void EnterCriticalSection(CRITICAL_SECTION* lpCriticalSection);
void LeaveCriticalSection(CRITICAL_SECTION* lpCriticalSection);
void DeleteCriticalSection(CRITICAL_SECTION* lpCriticalSection);

// Count up or down in one step that no other thread can divide; return the new value.
LONG InterlockedIncrement(LONG* lpAddend);
LONG InterlockedDecrement(LONG* lpAddend);
