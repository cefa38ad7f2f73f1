#include "platform/messages/MessageQueue.h"

#include "platform/Error.h"
#include "platform/objects/MakeObject.h"

#include <algorithm>
#include <new>
#include <utility>

namespace platform {
namespace {

void AnswerAllWithNothing(SentMessages& sent) {
    while (!sent.empty()) {
        SentMessages one;
        one.splice(one.end(), sent, sent.begin());
        CMessageQueue::Answer(one, 0);
    }
}

// Moves the messages that are no answers, and of these only the window's when one is given.
void MoveUnanswered(SentMessages& from, HWND window, SentMessages& to) {
    for (auto next = from.begin(); next != from.end();) {
        const auto sent = next++;
        if (sent->sender && (window == nullptr || sent->window == window))
            to.splice(to.end(), from, sent);
    }
}

} // namespace

bool MessageFilter::LetsThrough(const MSG& message) const {
    if (window == NO_WINDOW ? message.hwnd != nullptr : window != nullptr && message.hwnd != window)
        return false;
    if (lowest == 0 && highest == 0)
        return true;
    return lowest <= message.message && message.message <= highest;
}

CMessageQueue::~CMessageQueue() {
    if (m_hArrival != nullptr)
        CloseHandle(m_hArrival);
}

BOOL CMessageQueue::Create() {
    auto arrival = MakeObject<CEventObject>(true);
    if (!arrival || !arrival->Create(false))
        return FALSE;
    m_hArrival = RegisterHandle(arrival);
    m_arrival = std::move(arrival);
    return m_hArrival != nullptr;
}

BOOL CMessageQueue::Post(const MSG& message) {
    std::list<MSG> posted;
    try {
        posted.push_back(message);
    } catch (const std::bad_alloc&) {
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    }
    const std::lock_guard lock(m_mutex);
    if (!Accepts(message.hwnd))
        return FALSE;
    if (m_posted.size() >= MESSAGES_MAX)
        return FailWith(ERROR_NOT_ENOUGH_QUOTA);
    m_posted.splice(m_posted.end(), posted);
    m_arrival->Set();
    return TRUE;
}

BOOL CMessageQueue::Send(SentMessages& sent) {
    const std::lock_guard lock(m_mutex);
    if (!Accepts(sent.front().window))
        return FALSE;
    if (m_sent.size() >= MESSAGES_MAX)
        return FailWith(ERROR_NOT_ENOUGH_QUOTA);
    Queue(sent);
    return TRUE;
}

// The window may have gone, or the whole thread, since the caller looked the queue up.
BOOL CMessageQueue::Accepts(HWND window) const {
    if (window == nullptr)
        return m_bEnded ? FailWith(ERROR_INVALID_THREAD_ID) : TRUE;
    return m_windows.contains(window) ? TRUE : FailWith(ERROR_INVALID_WINDOW_HANDLE);
}

BOOL CMessageQueue::AddWindow(HWND window) {
    const std::lock_guard lock(m_mutex);
    try {
        m_windows.insert(window);
    } catch (const std::bad_alloc&) {
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    }
    return TRUE;
}

void CMessageQueue::RemoveWindow(HWND window) {
    SentMessages unanswered;
    {
        const std::lock_guard lock(m_mutex);
        m_windows.erase(window);
        m_posted.remove_if([window](const MSG& message) { return message.hwnd == window; });
        MoveUnanswered(m_sent, window, unanswered);
        Settle();
    }
    AnswerAllWithNothing(unanswered);
}

bool CMessageQueue::Retrieve(const MessageFilter& filter, bool remove, MSG& message) {
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_posted.begin(), m_posted.end(),
                                    [&](const MSG& each) { return filter.LetsThrough(each); });
    if (found == m_posted.end())
        return false;
    message = *found;
    if (remove) {
        m_posted.erase(found);
        Settle();
    }
    return true;
}

SentMessages CMessageQueue::TakeSent(std::uint64_t order) {
    SentMessages sent;
    const std::lock_guard lock(m_mutex);
    if (m_sent.empty() || m_sent.front().order > order)
        return sent;
    sent.splice(sent.end(), m_sent, m_sent.begin());
    if (!sent.front().sender)
        --m_nSending;
    Settle();
    return sent;
}

std::uint64_t CMessageQueue::LastOrder() {
    const std::lock_guard lock(m_mutex);
    return m_lastOrder;
}

void CMessageQueue::Answer(SentMessages& sent, LRESULT result) {
    sent.front().result = result;
    const auto sender = std::move(sent.front().sender);
    sender->TakeAnswer(sent);
}

// An answer is taken in even when the queue is full: BeginSend has bounded how many can come.
void CMessageQueue::TakeAnswer(SentMessages& sent) {
    const std::lock_guard lock(m_mutex);
    if (!m_bEnded)
        Queue(sent);
}

void CMessageQueue::Queue(SentMessages& sent) {
    sent.front().order = ++m_lastOrder;
    m_sent.splice(m_sent.end(), sent);
    m_arrival->Set();
}

BOOL CMessageQueue::BeginSend() {
    if (m_nSending >= MESSAGES_MAX)
        return FailWith(ERROR_NOT_ENOUGH_QUOTA);
    ++m_nSending;
    return TRUE;
}

void CMessageQueue::End() {
    std::list<MSG> posted;
    SentMessages sent;
    std::shared_ptr<CEventObject> arrival;
    {
        const std::lock_guard lock(m_mutex);
        m_bEnded = true;
        m_windows.clear();
        posted.swap(m_posted);
        sent.swap(m_sent);
        arrival.swap(m_arrival);
    }
    CloseHandle(std::exchange(m_hArrival, nullptr));
    SentMessages unanswered;
    MoveUnanswered(sent, nullptr, unanswered);
    AnswerAllWithNothing(unanswered);
}

void CMessageQueue::Settle() {
    if (m_posted.empty() && m_sent.empty())
        m_arrival->Reset();
}

} // namespace platform
