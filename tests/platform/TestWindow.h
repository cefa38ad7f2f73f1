// What the tests of windows and messages share: a window whose procedure is a callable, a thread
// that owns one, and the ways to retrieve messages. Each object is used by the thread that made it.
#pragma once

#include "platform/Message.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <thread>
#include <utility>
#include <vector>

inline constexpr UINT WM_TEST = WM_APP + 1;

using Handler = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

inline LRESULT TestProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto& handler = *reinterpret_cast<Handler*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    return handler(window, message, wParam, lParam);
}

// A window of a registered class; null on failure.
inline HWND MakeWindow(LPCSTR className) {
    return CreateWindowExA(0, className, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                           nullptr);
}

// A window whose procedure is the handler, which must outlive it.
inline HWND MakeWindowFor(const Handler& handler) {
    const WNDCLASSA windowClass = {TestProcedure, "TestWindow"};
    RegisterClassA(&windowClass);
    const HWND window = MakeWindow("TestWindow");
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&handler));
    return window;
}

class CTestWindow {
  public:
    explicit CTestWindow(Handler handler = DefWindowProcA) : m_handler(std::move(handler)) {}
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;
    ~CTestWindow() { DestroyWindow(m_hWindow); }
    operator HWND() const { return m_hWindow; }

  private:
    const Handler m_handler;
    const HWND m_hWindow = MakeWindowFor(m_handler);
};

// Counts the answers of sends whose data points to it.
struct Answers {
    int count = 0;
    LRESULT sum = 0;
    std::thread::id thread{};

    static void Take(HWND, UINT, ULONG_PTR data, LRESULT result) {
        auto& answers = *reinterpret_cast<Answers*>(data);
        ++answers.count;
        answers.sum += result;
        answers.thread = std::this_thread::get_id();
    }
    BOOL Send(HWND window, WPARAM wParam) {
        return SendMessageCallbackA(window, WM_TEST, wParam, 0, Take,
                                    reinterpret_cast<ULONG_PTR>(this));
    }
};

inline DWORD WaitForMessage(DWORD milliseconds) {
    return MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds, QS_ALLINPUT);
}

// Retrieves and dispatches until the condition holds, asleep while there is nothing.
inline void PumpUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        ASSERT_EQ(WaitForMessage(INFINITE), WAIT_OBJECT_0);
        MSG message;
        if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    }
}

// Retrieves what there is without dispatching it.
inline std::vector<MSG> TakeAll(HWND window = nullptr, UINT lowest = 0, UINT highest = 0) {
    std::vector<MSG> messages;
    MSG message;
    while (PeekMessageA(&message, window, lowest, highest, PM_REMOVE))
        messages.push_back(message);
    return messages;
}

inline DWORD OwnThreadId() {
    return static_cast<DWORD>(gettid());
}

// Another thread that has made a window, which it leaves to its own end. It then does what it is
// given; by itself it retrieves and dispatches until WM_QUIT. Joined at the end of the block at the
// latest.
class CWindowThread {
  public:
    explicit CWindowThread(Handler handler = DefWindowProcA,
                           std::function<void(HWND)> run = PumpUntilQuit)
        : m_handler(std::move(handler)), m_run(std::move(run)), m_thread([this] { Run(); }) {
        WaitForSingleObject(m_ready, INFINITE);
    }
    CWindowThread(const CWindowThread&) = delete;
    CWindowThread& operator=(const CWindowThread&) = delete;
    ~CWindowThread() {
        if (m_thread.joinable())
            Join();
    }
    void Join() {
        PostThreadMessageA(m_dwThreadId, WM_QUIT, 0, 0);
        m_thread.join();
    }
    operator HWND() const { return m_hWindow; }
    DWORD Id() const { return m_dwThreadId; }

  private:
    void Run() {
        m_hWindow = MakeWindowFor(m_handler);
        m_dwThreadId = OwnThreadId();
        SetEvent(m_ready);
        m_run(m_hWindow);
    }
    static void PumpUntilQuit(HWND) {
        MSG message{};
        while (message.message != WM_QUIT) {
            WaitForMessage(INFINITE);
            if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageA(&message);
        }
    }

    const Handler m_handler;
    const std::function<void(HWND)> m_run;
    const CTestHandle m_ready = MakeEvent(true, false);
    HWND m_hWindow = nullptr;
    DWORD m_dwThreadId = 0;
    std::thread m_thread;
};
