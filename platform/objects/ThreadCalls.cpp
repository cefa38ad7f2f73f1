#include "platform/Thread.h"

#include "platform/Error.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/MakeObject.h"
#include "platform/objects/ThreadObject.h"

using platform::CThreadObject;

namespace {

// Bit 1 is never set in a handle of the table.
const HANDLE kCurrentThread = reinterpret_cast<HANDLE>(std::uintptr_t{0xFFFFFFFE});

struct PriorityLevel {
    int priority;
    int nice;
};

// The nice values are moderate: they order the threads of a busy machine and starve nobody.
constexpr PriorityLevel kPriorityLevels[] = {
    {THREAD_PRIORITY_LOWEST, 10},
    {THREAD_PRIORITY_BELOW_NORMAL, 5},
    {THREAD_PRIORITY_NORMAL, 0},
    {THREAD_PRIORITY_ABOVE_NORMAL, -5},
};

const PriorityLevel* FindPriorityLevel(int priority) {
    for (const PriorityLevel& level : kPriorityLevels) {
        if (level.priority == priority)
            return &level;
    }
    return nullptr;
}

} // namespace

HANDLE CreateThread(SECURITY_ATTRIBUTES* lpThreadAttributes, std::size_t dwStackSize,
                    LPTHREAD_START_ROUTINE lpStartAddress, LPVOID lpParameter,
                    DWORD dwCreationFlags, LPDWORD lpThreadId) {
    if (lpThreadAttributes != nullptr || lpStartAddress == nullptr ||
        (dwCreationFlags & ~CREATE_SUSPENDED) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const bool isSuspended = (dwCreationFlags & CREATE_SUSPENDED) != 0;
    const auto thread =
        platform::MakeObject<CThreadObject>(lpStartAddress, lpParameter, isSuspended);
    if (!thread || !thread->Create())
        return nullptr;
    const HANDLE handle = platform::RegisterHandle(thread);
    if (handle == nullptr)
        return nullptr;
    if (!thread->Start(thread, dwStackSize)) {
        platform::RemoveHandle(handle);
        return nullptr;
    }
    if (lpThreadId != nullptr)
        *lpThreadId = thread->Identifier();
    return handle;
}

DWORD ResumeThread(HANDLE hThread) {
    const auto thread = platform::FindHandleOf<CThreadObject>(hThread);
    return thread ? thread->Resume() : 0xFFFFFFFF;
}

HANDLE GetCurrentThread() {
    return kCurrentThread;
}

BOOL SetThreadPriority(HANDLE hThread, int nPriority) {
    const PriorityLevel* level = FindPriorityLevel(nPriority);
    if (level == nullptr)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    if (hThread == kCurrentThread)
        return platform::SetThreadNice(0, level->nice);
    const auto thread = platform::FindHandleOf<CThreadObject>(hThread);
    return thread ? thread->SetNice(level->nice) : FALSE;
}

BOOL TerminateThread(HANDLE hThread, DWORD dwExitCode) {
    const auto thread = platform::FindHandleOf<CThreadObject>(hThread);
    if (!thread)
        return FALSE;
    thread->Terminate(dwExitCode);
    return TRUE;
}
