// A handle that closes itself at the end of a test; used by the thread that made it.
#pragma once

#include "platform/Thread.h"
#include "platform/Wait.h"

#include <utility>

class CTestHandle {
  public:
    explicit CTestHandle(HANDLE handle) : m_hHandle(handle) {}
    CTestHandle(CTestHandle&& other) noexcept : m_hHandle(other.Detach()) {}
    CTestHandle& operator=(CTestHandle&&) = delete;
    ~CTestHandle() {
        if (m_hHandle != nullptr)
            CloseHandle(m_hHandle);
    }
    operator HANDLE() const { return m_hHandle; }
    HANDLE Detach() { return std::exchange(m_hHandle, nullptr); }

  private:
    HANDLE m_hHandle;
};

inline CTestHandle MakeEvent(bool manualReset, bool signalled) {
    return CTestHandle(CreateEventA(nullptr, manualReset, signalled, nullptr));
}

// Runs a callable, which must outlive the thread, on a thread of the platform layer.
template <class Procedure> CTestHandle StartThread(Procedure& procedure) {
    const auto run = [](LPVOID argument) -> DWORD {
        (*static_cast<Procedure*>(argument))();
        return 0;
    };
    return CTestHandle(CreateThread(nullptr, 0, run, &procedure, 0, nullptr));
}

inline bool AwaitEnd(HANDLE thread) {
    return WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0;
}
