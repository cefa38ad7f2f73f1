// How a sent message goes its way: it waits in the receiver's queue, comes out when the receiver
// retrieves messages, and goes back as its own answer into the sender's queue, where the callback
// waits for the sender to retrieve. No lock is held while a procedure or a callback runs.
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/messages/ThreadQueue.h"
#include "platform/messages/WindowTable.h"
#include "platform/objects/MakeObject.h"

#include <algorithm>
#include <array>

using platform::CMessageQueue;
using platform::CurrentQueue;
using platform::FailWith;
using platform::QueuedMessage;
using platform::QueuedMessages;
using platform::Window;
using platform::WindowTable;

namespace {

// FALSE with the errors of PostMessageA.
BOOL Put(const QueuedMessage& message) {
    QueuedMessages one = platform::OrNoMemory([&] { return QueuedMessages{message}; });
    return one.empty() ? FALSE : WindowTable().Put(one);
}

// Null, with ERROR_INVALID_WINDOW_HANDLE, also for a window of another queue.
WNDPROC FindProcedure(HWND window, const std::shared_ptr<CMessageQueue>& queue) {
    const Window found = WindowTable().Find(window);
    if (found.queue == queue)
        return found.procedure;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

LRESULT CallProcedure(const std::shared_ptr<CMessageQueue>& queue, const MSG& message) {
    const WNDPROC procedure = FindProcedure(message.hwnd, queue);
    if (procedure == nullptr)
        return 0;
    return procedure(message.hwnd, message.message, message.wParam, message.lParam);
}

// The message is kept here meanwhile: what runs may retrieve the next one, or destroy the window.
void DeliverOldest(const std::shared_ptr<CMessageQueue>& queue) {
    QueuedMessages sent = queue->TakeSent();
    if (sent.empty())
        return;
    const auto& [message, callback, data, sender, result] = sent.front();
    if (sender)
        CMessageQueue::Answer(sent, CallProcedure(queue, message));
    else
        callback(message.hwnd, message.message, data, result);
}

} // namespace

BOOL PostMessageA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return Put({{hWnd, uMsg, wParam, lParam, GetTickCount()}});
}

BOOL SendMessageCallbackA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                          SENDASYNCPROC lpResultCallBack, ULONG_PTR dwData) {
    if (lpResultCallBack == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    const auto receiver = WindowTable().Find(hWnd).queue;
    const auto sender = receiver ? CurrentQueue() : nullptr;
    if (!sender)
        return FALSE;
    const MSG message = {hWnd, uMsg, wParam, lParam, 0};
    if (receiver == sender) {
        lpResultCallBack(hWnd, uMsg, dwData, CallProcedure(sender, message));
        return TRUE;
    }
    return sender->IsFull() ? FailWith(ERROR_NOT_ENOUGH_QUOTA)
                            : Put({message, lpResultCallBack, dwData, sender});
}

BOOL PeekMessageA(MSG* lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax, UINT wRemoveMsg) {
    if (lpMsg == nullptr || hWnd != nullptr || wMsgFilterMin != 0 || wMsgFilterMax != 0 ||
        wRemoveMsg != PM_REMOVE)
        return FailWith(ERROR_INVALID_PARAMETER);
    const auto queue = CurrentQueue();
    if (!queue)
        return FALSE;
    // Not more than were there at the beginning: two threads that send to each other from their
    // callbacks would otherwise never come to an end.
    for (std::size_t count = queue->CountSent(); count != 0; --count)
        DeliverOldest(queue);
    return queue->Retrieve(*lpMsg);
}

BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* lpMsg) {
    const auto queue = lpMsg != nullptr ? CurrentQueue() : nullptr;
    return queue ? CallProcedure(queue, *lpMsg) : 0;
}

DWORD MsgWaitForMultipleObjects(DWORD nCount, const HANDLE* pHandles, BOOL bWaitAll,
                                DWORD dwMilliseconds, DWORD dwWakeMask) {
    if (nCount >= MAXIMUM_WAIT_OBJECTS || (nCount != 0 && pHandles == nullptr) || bWaitAll ||
        dwWakeMask != QS_ALLINPUT) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    const auto queue = CurrentQueue();
    if (!queue)
        return WAIT_FAILED;
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles;
    std::copy_n(pHandles, nCount, handles.begin());
    handles[nCount] = queue->ArrivalHandle();
    return WaitForMultipleObjects(nCount + 1, handles.data(), FALSE, dwMilliseconds);
}
