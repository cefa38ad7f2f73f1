#include "platform/messages/ThreadQueue.h"

#include "platform/Error.h"
#include "platform/messages/WindowTable.h"
#include "platform/objects/MakeObject.h"

namespace platform {
namespace {

// A flag of its own: it can still be read when t_queue is gone.
thread_local bool t_bEnded = false;

struct QueueOfThread {
    QueueOfThread() = default;
    QueueOfThread(const QueueOfThread&) = delete;
    QueueOfThread& operator=(const QueueOfThread&) = delete;
    ~QueueOfThread() {
        t_bEnded = true;
        if (!queue)
            return;
        WindowTable().RemoveAllOf(*queue);
        queue->Drop(nullptr);
    }

    std::shared_ptr<CMessageQueue> queue;
};

thread_local QueueOfThread t_queue;

} // namespace

std::shared_ptr<CMessageQueue> CurrentQueue() {
    if (t_bEnded) {
        SetLastError(ERROR_INVALID_THREAD_ID);
        return nullptr;
    }
    if (t_queue.queue)
        return t_queue.queue;
    auto queue = MakeObject<CMessageQueue>();
    if (queue && queue->Create())
        t_queue.queue = std::move(queue);
    return t_queue.queue;
}

} // namespace platform
