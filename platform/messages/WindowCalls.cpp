#include "platform/Error.h"
#include "platform/messages/ThreadQueue.h"
#include "platform/messages/WindowTable.h"
#include "platform/objects/MakeObject.h"

using platform::FailWith;
using platform::OrNoMemory;
using platform::WindowTable;

namespace {

// Names are there to find the class again; nobody asks by number.
constexpr ATOM kAnyClass = 0xC000;

LPCSTR OrEmpty(LPCSTR name) {
    return name != nullptr ? name : "";
}

} // namespace

ATOM RegisterClassA(const WNDCLASSA* lpWndClass) {
    if (lpWndClass == nullptr || *OrEmpty(lpWndClass->lpszClassName) == '\0' ||
        lpWndClass->lpfnWndProc == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const BOOL isRegistered = OrNoMemory([&] {
        return WindowTable().RegisterClass(lpWndClass->lpszClassName, lpWndClass->lpfnWndProc);
    });
    return isRegistered ? kAnyClass : 0;
}

BOOL UnregisterClassA(LPCSTR lpClassName, LPVOID) {
    return OrNoMemory([&] { return WindowTable().UnregisterClass(OrEmpty(lpClassName)); });
}

HWND CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR, DWORD dwStyle, int, int, int, int,
                     HWND hWndParent, LPVOID hMenu, LPVOID, LPVOID lpParam) {
    if (hWndParent != HWND_MESSAGE || dwExStyle != 0 || dwStyle != 0 || hMenu != nullptr ||
        lpParam != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const auto queue = platform::CurrentQueue();
    if (!queue)
        return nullptr;
    return OrNoMemory([&] { return WindowTable().Add(OrEmpty(lpClassName), queue); });
}

BOOL DestroyWindow(HWND hWnd) {
    const auto queue = platform::CurrentQueue();
    if (!queue || !WindowTable().Remove(hWnd, *queue))
        return FALSE;
    queue->Drop(hWnd);
    return TRUE;
}

BOOL IsWindow(HWND hWnd) {
    return WindowTable().Find(hWnd).queue != nullptr;
}

LONG_PTR GetWindowLongPtrA(HWND hWnd, int nIndex) {
    return nIndex == GWLP_USERDATA ? WindowTable().Find(hWnd).userData
                                   : FailWith(ERROR_INVALID_INDEX);
}

LONG_PTR SetWindowLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong) {
    return nIndex == GWLP_USERDATA ? WindowTable().ExchangeUserData(hWnd, dwNewLong)
                                   : FailWith(ERROR_INVALID_INDEX);
}

LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}
