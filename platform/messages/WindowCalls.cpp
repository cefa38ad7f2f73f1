#include "platform/Error.h"
#include "platform/messages/ThreadQueues.h"
#include "platform/messages/WindowTable.h"

using platform::CMessageQueue;
using platform::FailWith;
using platform::WindowTable;

ATOM RegisterClassA(const WNDCLASSA* lpWndClass) {
    if (lpWndClass == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return WindowTable().RegisterClass(lpWndClass->lpszClassName, lpWndClass->lpfnWndProc);
}

BOOL UnregisterClassA(LPCSTR lpClassName, LPVOID) {
    return WindowTable().UnregisterClass(lpClassName);
}

HWND CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR, DWORD dwStyle, int, int, int, int,
                     HWND hWndParent, LPVOID hMenu, LPVOID, LPVOID lpParam) {
    if (hWndParent != HWND_MESSAGE || dwExStyle != 0 || dwStyle != 0 || hMenu != nullptr ||
        lpParam != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    CMessageQueue* const queue = platform::CurrentQueue();
    if (queue == nullptr)
        return nullptr;
    const HWND window = WindowTable().Add(lpClassName, queue->shared_from_this());
    if (window == nullptr || queue->AddWindow(window))
        return window;
    WindowTable().Remove(window, *queue);
    return nullptr;
}

BOOL DestroyWindow(HWND hWnd) {
    CMessageQueue* const queue = platform::CurrentQueue();
    if (queue == nullptr || !WindowTable().Remove(hWnd, *queue))
        return FALSE;
    queue->RemoveWindow(hWnd);
    return TRUE;
}

BOOL IsWindow(HWND hWnd) {
    return WindowTable().Has(hWnd);
}

LONG_PTR GetWindowLongPtrA(HWND hWnd, int nIndex) {
    return nIndex == GWLP_USERDATA ? WindowTable().UserData(hWnd) : FailWith(ERROR_INVALID_INDEX);
}

LONG_PTR SetWindowLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong) {
    return nIndex == GWLP_USERDATA ? WindowTable().ExchangeUserData(hWnd, dwNewLong)
                                   : FailWith(ERROR_INVALID_INDEX);
}

LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}
