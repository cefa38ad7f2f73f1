#include "platform/messages/ThreadQueues.h"

#include "platform/Error.h"
#include "platform/messages/WindowTable.h"
#include "platform/objects/MakeObject.h"

#include <unistd.h>

#include <map>
#include <mutex>
#include <new>
#include <utility>

namespace platform {
namespace {

class CThreadQueues {
  public:
    BOOL Add(DWORD threadId, const std::shared_ptr<CMessageQueue>& queue) {
        const std::lock_guard lock(m_mutex);
        try {
            m_queues.insert_or_assign(threadId, queue);
        } catch (const std::bad_alloc&) {
            return FailWith(ERROR_NOT_ENOUGH_MEMORY);
        }
        return TRUE;
    }

    std::shared_ptr<CMessageQueue> Find(DWORD threadId) {
        const std::lock_guard lock(m_mutex);
        const auto found = m_queues.find(threadId);
        return found != m_queues.end() ? found->second : nullptr;
    }

    void Remove(DWORD threadId) {
        const std::lock_guard lock(m_mutex);
        m_queues.erase(threadId);
    }

  private:
    std::mutex m_mutex;
    std::map<DWORD, std::shared_ptr<CMessageQueue>> m_queues;
};

// Never destroyed: threads that outlive main() may still post.
CThreadQueues& Queues() {
    static CThreadQueues& queues = *new CThreadQueues;
    return queues;
}

class CQueueOfThread {
  public:
    CQueueOfThread() = default;
    CQueueOfThread(const CQueueOfThread&) = delete;
    CQueueOfThread& operator=(const CQueueOfThread&) = delete;
    ~CQueueOfThread() { EndCurrentQueue(); }

    BOOL Make() {
        auto queue = MakeObject<CMessageQueue>();
        const auto threadId = static_cast<DWORD>(gettid());
        if (!queue || !queue->Create() || !Queues().Add(threadId, queue))
            return FALSE;
        m_queue = std::move(queue);
        m_dwThreadId = threadId;
        return TRUE;
    }

    CMessageQueue* Get() const { return m_queue.get(); }

    void End() {
        if (!m_queue)
            return;
        Queues().Remove(m_dwThreadId);
        for (const HWND window : m_queue->Windows())
            WindowTable().Remove(window, *m_queue);
        m_queue->End();
        m_queue.reset();
    }

  private:
    std::shared_ptr<CMessageQueue> m_queue;
    DWORD m_dwThreadId = 0;
};

thread_local CQueueOfThread t_queue;

// A flag of its own: it can still be read when t_queue is gone, by what else the thread's end runs.
thread_local bool t_bEnded = false;

} // namespace

CMessageQueue* CurrentQueue() {
    if (t_bEnded) {
        SetLastError(ERROR_INVALID_THREAD_ID);
        return nullptr;
    }
    if (t_queue.Get() == nullptr && !t_queue.Make())
        return nullptr;
    return t_queue.Get();
}

std::shared_ptr<CMessageQueue> FindThreadQueue(DWORD threadId) {
    auto queue = Queues().Find(threadId);
    if (!queue)
        SetLastError(ERROR_INVALID_THREAD_ID);
    return queue;
}

void EndCurrentQueue() {
    if (std::exchange(t_bEnded, true))
        return;
    t_queue.End();
}

} // namespace platform
