// Windows and messages: how one thread gives another something to do at a moment that suits it.
//
// A window is message-only: a receiver with a procedure, owned by the thread that made it, and
// nothing to look at. Each thread has one queue, made when the thread first needs it and freed when
// the thread ends; a thread's windows end with it. Messages of one sender arrive in the order in
// which they were posted. A procedure or a callback runs only on the thread that it belongs to, in
// a call that this thread makes here, with no lock held: it may call anything, also retrieve
// messages or destroy its own window.
//
// Any thread may call these. A window's handle is a small number: one of a window that is gone or
// never was is answered with ERROR_INVALID_WINDOW_HANDLE. Calls that need the thread's queue and
// cannot make it fail with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
#pragma once

#include "platform/Types.h"
#include "platform/Wait.h"

using ATOM = WORD;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;

// What a window does with a message; the result goes to whoever dispatched or sent it.
using WNDPROC = LRESULT (*)(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

// Told the result of a message that was sent; dwData is what the sender gave.
using SENDASYNCPROC = void (*)(HWND hWnd, UINT uMsg, ULONG_PTR dwData, LRESULT lResult);

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time; // the tick count when it was posted
};

// The first of the numbers that are free for programs. This layer itself posts and sends none.
inline constexpr UINT WM_APP = 0x8000;

inline constexpr UINT PM_REMOVE = 1;

inline constexpr DWORD QS_ALLINPUT = 0x04FF;

// The index of the pointer-sized value that a window keeps for its owner.
inline constexpr int GWLP_USERDATA = -21;

// The parent of message-only windows.
inline const HWND HWND_MESSAGE = reinterpret_cast<HWND>(~std::uintptr_t{2});

// What windows of a class have in common.
struct WNDCLASSA {
    WNDPROC lpfnWndProc;
    LPCSTR lpszClassName; // not empty
};

// Makes a class known to the whole process. Returns a number other than 0, 0 on failure:
// ERROR_CLASS_ALREADY_EXISTS, ERROR_INVALID_PARAMETER, ERROR_NOT_ENOUGH_MEMORY.
ATOM RegisterClassA(const WNDCLASSA* lpWndClass);

// Forgets a class, as a library does before it is unloaded. hInstance has no effect. FALSE with
// ERROR_CLASS_DOES_NOT_EXIST or, while there are windows of it, ERROR_CLASS_HAS_WINDOWS.
BOOL UnregisterClassA(LPCSTR lpClassName, LPVOID hInstance);

// Makes a window of the calling thread. The parent must be HWND_MESSAGE, both styles 0, the menu
// and lpParam null (no message tells the procedure of the window's beginning or end: what belongs
// to it is handed over with SetWindowLongPtrA); name, place, size and hInstance have no effect.
// Null on failure: ERROR_INVALID_PARAMETER, ERROR_CANNOT_FIND_WND_CLASS, ERROR_NOT_ENOUGH_MEMORY.
HWND CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName, DWORD dwStyle, int X,
                     int Y, int nWidth, int nHeight, HWND hWndParent, LPVOID hMenu,
                     LPVOID hInstance, LPVOID lpParam);

// Ends a window of the calling thread. Messages that are queued for it are dropped, those sent to
// it are over with the result 0. FALSE with ERROR_INVALID_WINDOW_HANDLE or, for another thread's
// window, ERROR_ACCESS_DENIED.
BOOL DestroyWindow(HWND hWnd);

// Whether there is this window at the moment.
BOOL IsWindow(HWND hWnd);

// Read and change the value kept with a window (at first 0; nIndex is GWLP_USERDATA). Both return
// the value found. 0 with ERROR_INVALID_WINDOW_HANDLE or ERROR_INVALID_INDEX.
LONG_PTR GetWindowLongPtrA(HWND hWnd, int nIndex);
LONG_PTR SetWindowLongPtrA(HWND hWnd, int nIndex, LONG_PTR dwNewLong);

// What a procedure does with messages that are not its own: nothing. Returns 0.
LRESULT DefWindowProcA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

// Queues a message for a window and returns at once. FALSE with ERROR_INVALID_WINDOW_HANDLE,
// ERROR_NOT_ENOUGH_QUOTA (10000 messages wait in that queue, posted, sent and answered ones),
// ERROR_NOT_ENOUGH_MEMORY.
BOOL PostMessageA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

// Sends a message to a window and returns at once. The window's thread runs the procedure when it
// next retrieves messages; after that, or with the result 0 once the window is gone, the callback
// runs in the calling thread when this one next retrieves messages. For a window of the calling
// thread both run before the call returns. Each TRUE is followed by one callback, unless the
// calling thread ends first. FALSE with ERROR_INVALID_WINDOW_HANDLE, ERROR_INVALID_PARAMETER (no
// callback), ERROR_NOT_ENOUGH_QUOTA (that queue is full, or the calling thread's own),
// ERROR_NOT_ENOUGH_MEMORY.
BOOL SendMessageCallbackA(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                          SENDASYNCPROC lpResultCallBack, ULONG_PTR dwData);

// Retrieves messages without waiting: first runs the procedures and callbacks of as many sent
// messages as were there when the call began, then takes the oldest posted message out. The window
// must be null and the range of numbers 0 to 0, which are all, and wRemoveMsg PM_REMOVE. FALSE when
// there is none, and with ERROR_INVALID_PARAMETER.
BOOL PeekMessageA(MSG* lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax, UINT wRemoveMsg);

// Would make characters of keystrokes; no keystrokes come as messages here. FALSE.
BOOL TranslateMessage(const MSG* lpMsg);

// Runs the procedure of a retrieved message's window and returns its result; 0 for a window that is
// gone or another thread's (ERROR_INVALID_WINDOW_HANDLE).
LRESULT DispatchMessageA(const MSG* lpMsg);

// WaitForMultipleObjects for up to MAXIMUM_WAIT_OBJECTS - 1 handles (nCount may be 0) and the
// thread's messages: returns WAIT_OBJECT_0 plus nCount while there is a message, posted or sent, or
// a callback to run. bWaitAll must be FALSE and dwWakeMask QS_ALLINPUT.
DWORD MsgWaitForMultipleObjects(DWORD nCount, const HANDLE* pHandles, BOOL bWaitAll,
                                DWORD dwMilliseconds, DWORD dwWakeMask);
