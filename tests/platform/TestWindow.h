// What the tests of windows and messages share: a window whose procedure is a callable, a thread
// that owns one, and the ways to retrieve messages. Each object is used by the thread that made it.
#pragma once

#include "platform/Message.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

inline constexpr UINT WM_TEST = WM_APP + 1;

using Values = std::vector<WPARAM>;
using Handler = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

inline LRESULT TestProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto handler = reinterpret_cast<const Handler*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    return (*handler)(window, message, wParam, lParam);
}

// A window whose procedure is the handler, which must outlive it.
inline HWND MakeWindow(const Handler& handler) {
    const WNDCLASSA windowClass = {TestProcedure, "TestWindow"};
    RegisterClassA(&windowClass);
    const HWND window = CreateWindowExA(0, "TestWindow", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                        nullptr, nullptr);
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
    const HWND m_hWindow = MakeWindow(m_handler);
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
    BOOL Send(HWND window, WPARAM value = 0) {
        return SendMessageCallbackA(window, WM_TEST, value, 0, Take,
                                    reinterpret_cast<ULONG_PTR>(this));
    }
};

inline DWORD WaitForMessage(DWORD milliseconds, const std::vector<HANDLE>& handles = {}) {
    return MsgWaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE,
                                     milliseconds, QS_ALLINPUT);
}

inline BOOL Post(HWND window, WPARAM value = 0) {
    return PostMessageA(window, WM_TEST, value, 0);
}

inline BOOL Retrieve(MSG& message) {
    return PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
}

// The result of the next message's procedure; -1 when there is no message.
inline LRESULT DispatchNext() {
    MSG message;
    return Retrieve(message) ? DispatchMessageA(&message) : -1;
}

// Retrieves and dispatches until the condition holds, asleep while there is nothing.
inline void PumpUntil(const std::function<bool()>& condition) {
    for (; !condition(); DispatchNext())
        ASSERT_EQ(WaitForMessage(INFINITE), WAIT_OBJECT_0);
}

// Retrieves what there is without dispatching it.
inline Values TakeAll() {
    Values values;
    for (MSG message; Retrieve(message);)
        values.push_back(message.wParam);
    return values;
}

// Another thread that has made a window, which it leaves to its own end. It then does what it is
// given; by itself it retrieves and dispatches until it is joined, at the end of the block at the
// latest.
class CWindowThread {
  public:
    explicit CWindowThread(Handler handler = DefWindowProcA, std::function<void(HWND)> run = {})
        : m_handler(std::move(handler)), m_thread([this, run = std::move(run)] {
              m_hWindow = MakeWindow(m_handler);
              SetEvent(m_ready);
              run ? run(m_hWindow) : PumpUntil([this] { return m_bEnding.load(); });
          }) {
        WaitForSingleObject(m_ready, INFINITE);
    }
    CWindowThread(const CWindowThread&) = delete;
    CWindowThread& operator=(const CWindowThread&) = delete;
    ~CWindowThread() { Join(); }
    void Join() {
        m_bEnding = true;
        Post(m_hWindow);
        if (m_thread.joinable())
            m_thread.join();
    }
    operator HWND() const { return m_hWindow; }

  private:
    const Handler m_handler;
    const CTestHandle m_ready = MakeEvent(true, false);
    std::atomic<bool> m_bEnding = false;
    HWND m_hWindow = nullptr;
    std::thread m_thread;
};
