// Handles that close themselves at the end of a test.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/Thread.h"

using CTestHandle = CUniqueHandle;

inline CTestHandle MakeEvent(bool manualReset, bool signalled) {
    return CTestHandle(CreateEventA(nullptr, manualReset, signalled, nullptr));
}

// Runs a callable, which must outlive the thread, on a thread of the platform layer.
template <class Procedure> CTestHandle StartThread(Procedure& procedure, DWORD flags = 0) {
    const auto run = [](LPVOID argument) -> DWORD {
        (*static_cast<Procedure*>(argument))();
        return 0;
    };
    return CTestHandle(CreateThread(nullptr, 0, run, &procedure, flags, nullptr));
}

inline bool AwaitEnd(HANDLE thread) {
    return WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0;
}
