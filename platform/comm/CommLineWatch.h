// A thread that has the driver tell it when a modem line moves, and passes that on through a
// descriptor, for those who wait with poll(). Nothing outside platform/ includes this header.
//
// Owned by the wait for comm events and used under its lock; the thread itself takes no lock. The
// wait in the driver ends at a signal only: Stop sends one until the thread has ended, which takes
// milliseconds. A driver that does not hear it keeps the thread, the lines and the descriptor, and
// nobody waits for it.
#pragma once

#include "platform/Wait.h"
#include "platform/comm/CommLines.h"
#include "platform/comm/CommWake.h"

#include <atomic>
#include <memory>

namespace platform {

class CCommLineWatch {
  public:
    CCommLineWatch() = default;
    CCommLineWatch(const CCommLineWatch&) = delete;
    CCommLineWatch& operator=(const CCommLineWatch&) = delete;
    ~CCommLineWatch() { Stop(); }

    // Starts to watch for carrier, unless that is being done. TRUE when the thread has been started
    // by this call.
    BOOL Start(const std::shared_ptr<ICommLines>& lines, const std::shared_ptr<CCommWake>& wake);
    void Stop();

    // False when the lines must be read instead: the driver cannot tell, or there is no thread.
    bool IsWatching() const { return m_state && m_state->isAble; }

  private:
    // What the thread keeps alive.
    struct State {
        std::shared_ptr<ICommLines> lines;
        std::shared_ptr<CCommWake> wake;
        std::atomic<bool> isStopped = false;
        std::atomic<bool> isAble = true;
    };
    static DWORD ThreadProc(LPVOID state);
    static void Watch(State& state);

    std::shared_ptr<State> m_state;
    struct CloseThread {
        void operator()(HANDLE thread) const { CloseHandle(thread); }
    };
    std::unique_ptr<void, CloseThread> m_hThread;
    DWORD m_dwThreadId = 0;
};

} // namespace platform
