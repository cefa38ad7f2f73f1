#include "platform/Message.h"

#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/messages/ThreadQueues.h"
#include "platform/messages/WindowTable.h"

#include <algorithm>
#include <array>
#include <new>

using platform::CMessageQueue;
using platform::CurrentQueue;
using platform::FailWith;
using platform::SentMessage;
using platform::SentMessages;
using platform::WindowTable;

namespace {

LRESULT CallProcedure(const CMessageQueue& queue, const MSG& message) {
    const WNDPROC procedure = WindowTable().ProcedureOf(message.hwnd, queue);
    if (procedure == nullptr)
        return 0;
    return procedure(message.hwnd, message.message, message.wParam, message.lParam);
}

// The message is kept here meanwhile: what runs may retrieve the next one, or destroy the window.
void Deliver(const CMessageQueue& queue, SentMessages& sent) {
    const SentMessage& one = sent.front();
    if (!one.sender) {
        one.callback(one.window, one.message, one.data, one.result);
        return;
    }
    const LRESULT result =
        CallProcedure(queue, {one.window, one.message, one.wParam, one.lParam, 0});
    CMessageQueue::Answer(sent, result);
}

// Only what is there at the beginning: two threads that send to each other from their callbacks
// would otherwise never come to an end.
void DeliverSent(CMessageQueue& queue) {
    const std::uint64_t last = queue.LastOrder();
    for (;;) {
        SentMessages sent = queue.TakeSent(last);
        if (sent.empty())
            return;
        Deliver(queue, sent);
    }
}

// FALSE with the errors of SendMessageCallbackA.
BOOL SendTo(CMessageQueue& receiver, CMessageQueue& sender, const SentMessage& message) {
    SentMessages sent;
    try {
        sent.push_back(message);
    } catch (const std::bad_alloc&) {
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (!sender.BeginSend())
        return FALSE;
    if (receiver.Send(sent))
        return TRUE;
    sender.CancelSend();
    return FALSE;
}

} // namespace

BOOL PostMessageA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    const MSG message = {hWnd, uMsg, wParam, lParam, GetTickCount()};
    if (hWnd == nullptr) {
        CMessageQueue* const own = CurrentQueue();
        return own != nullptr ? own->Post(message) : FALSE;
    }
    const auto queue = WindowTable().QueueOf(hWnd);
    return queue ? queue->Post(message) : FALSE;
}

BOOL PostThreadMessageA(DWORD dwThreadId, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    const auto queue = platform::FindThreadQueue(dwThreadId);
    return queue ? queue->Post({nullptr, uMsg, wParam, lParam, GetTickCount()}) : FALSE;
}

BOOL SendMessageCallbackA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                          SENDASYNCPROC lpResultCallBack, ULONG_PTR dwData) {
    if (lpResultCallBack == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    const auto receiver = WindowTable().QueueOf(hWnd);
    CMessageQueue* const sender = receiver ? CurrentQueue() : nullptr;
    if (sender == nullptr)
        return FALSE;
    if (receiver.get() != sender)
        return SendTo(
            *receiver, *sender,
            {hWnd, uMsg, wParam, lParam, sender->shared_from_this(), lpResultCallBack, dwData});
    const LRESULT result = CallProcedure(*sender, {hWnd, uMsg, wParam, lParam, 0});
    lpResultCallBack(hWnd, uMsg, dwData, result);
    return TRUE;
}

BOOL PeekMessageA(MSG* lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax, UINT wRemoveMsg) {
    if (lpMsg == nullptr || wRemoveMsg > PM_REMOVE)
        return FailWith(ERROR_INVALID_PARAMETER);
    CMessageQueue* const queue = CurrentQueue();
    if (queue == nullptr)
        return FALSE;
    const bool isOneWindow = hWnd != nullptr && hWnd != platform::NO_WINDOW;
    if (isOneWindow && WindowTable().ProcedureOf(hWnd, *queue) == nullptr)
        return FALSE;
    DeliverSent(*queue);
    return queue->Retrieve({hWnd, wMsgFilterMin, wMsgFilterMax}, wRemoveMsg == PM_REMOVE, *lpMsg);
}

BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* lpMsg) {
    if (lpMsg == nullptr || lpMsg->hwnd == nullptr)
        return 0;
    const CMessageQueue* const queue = CurrentQueue();
    return queue != nullptr ? CallProcedure(*queue, *lpMsg) : 0;
}

DWORD MsgWaitForMultipleObjects(DWORD nCount, const HANDLE* pHandles, BOOL bWaitAll,
                                DWORD dwMilliseconds, DWORD dwWakeMask) {
    if (nCount >= MAXIMUM_WAIT_OBJECTS || (nCount != 0 && pHandles == nullptr) || bWaitAll ||
        dwWakeMask != QS_ALLINPUT) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    const CMessageQueue* const queue = CurrentQueue();
    if (queue == nullptr)
        return WAIT_FAILED;
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles;
    std::copy_n(pHandles, nCount, handles.begin());
    handles[nCount] = queue->ArrivalHandle();
    return WaitForMultipleObjects(nCount + 1, handles.data(), FALSE, dwMilliseconds);
}
