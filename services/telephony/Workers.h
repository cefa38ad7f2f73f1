// CWorkers: the threads that open devices.
//
// Owned by the service. Any thread may start one. Each keeps the module loaded until it has been
// awaited: unloading could not wait for it, because a thread that ends may need the loader's lock.
// What is left when the process exits is waited for here.
#pragma once

#include "common/UniqueHandle.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace telephonyservice {

class CWorkers {
  public:
    CWorkers() = default;
    CWorkers(const CWorkers&) = delete;
    CWorkers& operator=(const CWorkers&) = delete;
    ~CWorkers();

    // Throws nothing. Sets the mark before it tells anybody of its end, and does not block any more
    // from then on.
    using Work = std::function<void(std::atomic<bool>& isEnding)>;

    // Does the work on a thread of its own. False when there is none to be had.
    bool Start(Work work);

    // For calls that come from outside, not from the module itself, which may be gone afterwards:
    // awaits those that are ending, or all. Not with a lock that the work takes.
    void Reap() { Join(false); }
    void Await() { Join(true); }

  private:
    struct Worker {
        Work work;
        std::atomic<bool> isEnding = false;
        CUniqueHandle thread;
    };

    void Join(bool all);
    static DWORD Run(LPVOID worker);

    std::mutex m_mutex;
    std::vector<std::unique_ptr<Worker>> m_workers;
};

} // namespace telephonyservice
