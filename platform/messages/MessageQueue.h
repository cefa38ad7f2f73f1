// The messages of one thread: those posted to it or to its windows, those sent to its windows by
// other threads, and the answers to those it has sent itself. Nothing outside platform/ includes
// this header.
//
// Owned by its thread (see ThreadQueues.h) and kept by whoever is about to put something in; End
// stops it, after which nothing comes in. Its lock is held for list work alone: never while code of
// others runs, never together with another queue's.
#pragma once

#include "platform/Message.h"
#include "platform/objects/EventObject.h"

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <set>

namespace platform {

class CMessageQueue;

// A message on its way to a window, then its answer on the way back.
struct SentMessage {
    HWND window = nullptr;
    UINT message = WM_NULL;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    std::shared_ptr<CMessageQueue> sender; // null once answered
    SENDASYNCPROC callback = nullptr;
    ULONG_PTR data = 0;
    LRESULT result = 0;
    std::uint64_t order = 0; // of its arrival in the queue that it is in
};

// Lists, because their elements move from queue to queue without an allocation that could fail
// halfway. Where a function below takes one, it holds a single message.
using SentMessages = std::list<SentMessage>;

// What PeekMessageA was asked for.
struct MessageFilter {
    HWND window;
    UINT lowest;
    UINT highest;

    bool LetsThrough(const MSG& message) const;
};

class CMessageQueue final : public std::enable_shared_from_this<CMessageQueue> {
  public:
    // The number that the published interface gives; it bounds the posted and the sent messages
    // each.
    static constexpr std::size_t MESSAGES_MAX = 10000;

    CMessageQueue() = default;
    CMessageQueue(const CMessageQueue&) = delete;
    CMessageQueue& operator=(const CMessageQueue&) = delete;
    ~CMessageQueue();

    // Gets what waits look at. FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    // By any thread. FALSE with the errors of PostMessageA; a sent message is taken out of the list
    // only on success.
    BOOL Post(const MSG& message);
    BOOL Send(SentMessages& sent);

    // The rest by the queue's own thread.

    // An event that is signalled while anything is queued.
    HANDLE ArrivalHandle() const { return m_hArrival; }

    // Lets messages for a window of the thread in. FALSE with ERROR_NOT_ENOUGH_MEMORY.
    BOOL AddWindow(HWND window);
    // Lets none in any more, drops those posted to it and answers those sent to it with 0.
    void RemoveWindow(HWND window);
    const std::set<HWND>& Windows() const { return m_windows; }

    // The oldest message that the filter lets through.
    bool Retrieve(const MessageFilter& filter, bool remove, MSG& message);

    // The next sent message or answer that arrived no later than the one of this order; empty when
    // there is none.
    SentMessages TakeSent(std::uint64_t order);
    std::uint64_t LastOrder();

    // Gives a message that TakeSent returned, and that was no answer, back to its sender.
    static void Answer(SentMessages& sent, LRESULT result);

    // Around a send to another queue: counts the callbacks to come. FALSE with
    // ERROR_NOT_ENOUGH_QUOTA.
    BOOL BeginSend();
    void CancelSend() { --m_nSending; }

    // At the end of the thread: drops what is queued, answers what was sent with 0.
    void End();

  private:
    BOOL Accepts(HWND window) const;
    void TakeAnswer(SentMessages& sent);
    void Queue(SentMessages& sent);
    void Settle();

    std::mutex m_mutex;
    bool m_bEnded = false;
    std::list<MSG> m_posted;
    SentMessages m_sent; // and answers
    std::uint64_t m_lastOrder = 0;
    std::set<HWND> m_windows; // changed by the own thread only, under the lock
    std::size_t m_nSending = 0;
    HANDLE m_hArrival = nullptr;
    std::shared_ptr<CEventObject> m_arrival; // set and reset under the lock
};

} // namespace platform
