// The messages of one thread, in the order in which they came: those posted to its windows, those
// sent to its windows by other threads, and the answers to those it has sent itself. Nothing
// outside platform/ includes this header.
//
// Shared by its thread (see ThreadQueue.h), the thread's windows and the messages that it has sent;
// an answer that comes after the thread's end goes with the queue. Its lock is held for list work
// alone: never while code of others runs, never together with another queue's.
#pragma once

#include "platform/Message.h"

#include <list>
#include <memory>
#include <mutex>

namespace platform {

class CMessageQueue;

struct QueuedMessage {
    MSG message{};
    SENDASYNCPROC callback = nullptr; // null: it was posted
    ULONG_PTR data = 0;
    std::shared_ptr<CMessageQueue> sender{}; // null: it was posted, or is the answer
    LRESULT result = 0;
};

// Lists, because their elements move from queue to queue without an allocation that could fail
// halfway. Where a function below takes or returns one, it holds at most one message.
using QueuedMessages = std::list<QueuedMessage>;

class CMessageQueue final {
  public:
    CMessageQueue() = default;
    CMessageQueue(const CMessageQueue&) = delete;
    CMessageQueue& operator=(const CMessageQueue&) = delete;
    ~CMessageQueue();

    // Gets what waits look at. FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    // By any thread: takes the message over, out of the list. FALSE with ERROR_NOT_ENOUGH_QUOTA.
    BOOL Put(QueuedMessages& message);

    // By the thread that TakeSent has given the message to: gives it back to its sender. There is
    // always room for answers: what could be answered was bounded when it was sent.
    static void Answer(QueuedMessages& sent, LRESULT result);

    // The rest by the queue's own thread.

    // An event that is signalled while anything is queued.
    HANDLE ArrivalHandle() const { return m_hArrival; }

    bool IsFull();

    // Takes the oldest posted message out.
    bool Retrieve(MSG& message);

    // The sent messages and answers that there are, and the oldest of them; empty when there is
    // none.
    std::size_t CountSent();
    QueuedMessages TakeSent();

    // Drops what there is for a window that is gone, or all (null) at the end of the thread, and
    // answers what was sent with 0.
    void Drop(HWND window);

  private:
    void Append(QueuedMessages& message);
    void Settle();

    std::mutex m_mutex;
    QueuedMessages m_posted;
    QueuedMessages m_sent;       // and answers
    HANDLE m_hArrival = nullptr; // set and reset under the lock
};

} // namespace platform
