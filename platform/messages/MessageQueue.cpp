// A message is one list element from its birth on, spliced from list to list: into the queue, out
// to whoever runs it, back to the sender as its answer. So nothing can fail between a send that was
// accepted and its callback.
#include "platform/messages/MessageQueue.h"

#include "platform/Error.h"

#include <utility>

namespace platform {
namespace {

// The number that the published interface gives.
constexpr std::size_t kMessagesMax = 10000;

// Moves the messages for the window, or all (null).
void Move(QueuedMessages& from, HWND window, QueuedMessages& to) {
    for (auto next = from.begin(); next != from.end();) {
        const auto each = next++;
        if (window == nullptr || each->message.hwnd == window)
            to.splice(to.end(), from, each);
    }
}

} // namespace

CMessageQueue::~CMessageQueue() {
    if (m_hArrival != nullptr)
        CloseHandle(m_hArrival);
}

BOOL CMessageQueue::Create() {
    m_hArrival = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return m_hArrival != nullptr;
}

BOOL CMessageQueue::Put(QueuedMessages& message) {
    const std::lock_guard lock(m_mutex);
    if (m_posted.size() + m_sent.size() >= kMessagesMax)
        return FailWith(ERROR_NOT_ENOUGH_QUOTA);
    Append(message);
    return TRUE;
}

void CMessageQueue::Answer(QueuedMessages& sent, LRESULT result) {
    sent.front().result = result;
    const auto sender = std::exchange(sent.front().sender, nullptr);
    const std::lock_guard lock(sender->m_mutex);
    sender->Append(sent);
}

bool CMessageQueue::IsFull() {
    const std::lock_guard lock(m_mutex);
    return m_posted.size() + m_sent.size() >= kMessagesMax;
}

bool CMessageQueue::Retrieve(MSG& message) {
    const std::lock_guard lock(m_mutex);
    if (m_posted.empty())
        return false;
    message = m_posted.front().message;
    m_posted.pop_front();
    Settle();
    return true;
}

std::size_t CMessageQueue::CountSent() {
    const std::lock_guard lock(m_mutex);
    return m_sent.size();
}

QueuedMessages CMessageQueue::TakeSent() {
    QueuedMessages sent;
    const std::lock_guard lock(m_mutex);
    if (!m_sent.empty())
        sent.splice(sent.end(), m_sent, m_sent.begin());
    Settle();
    return sent;
}

void CMessageQueue::Drop(HWND window) {
    QueuedMessages dropped;
    {
        const std::lock_guard lock(m_mutex);
        Move(m_posted, window, dropped);
        Move(m_sent, window, dropped);
        Settle();
    }
    for (QueuedMessages one; !dropped.empty(); one.clear()) {
        one.splice(one.end(), dropped, dropped.begin());
        if (one.front().sender)
            Answer(one, 0);
    }
}

void CMessageQueue::Append(QueuedMessages& message) {
    QueuedMessages& messages = message.front().callback == nullptr ? m_posted : m_sent;
    messages.splice(messages.end(), message);
    SetEvent(m_hArrival);
}

void CMessageQueue::Settle() {
    if (m_posted.empty() && m_sent.empty())
        ResetEvent(m_hArrival);
}

} // namespace platform
