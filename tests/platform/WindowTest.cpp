#include "platform/Error.h"
#include "tests/platform/TestWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

TEST(Window, StaleAndInventedWindowsAreRecognised) {
    const CTestHandle event = MakeEvent(true, true);
    const CTestWindow live;
    auto gone = std::make_unique<CTestWindow>();
    const HWND stale = *gone;
    gone.reset();
    const HWND inItsPlace = MakeWindow("TestWindow");
    ASSERT_NE(stale, inItsPlace);
    EXPECT_EQ(GetWindowLongPtrA(inItsPlace, GWLP_USERDATA), 0) << "nothing of its predecessor";
    int onTheStack = 0;
    Answers answers;
    const std::function<BOOL(HWND)> calls[] = {
        [](HWND window) { return PostMessageA(window, WM_TEST, 0, 0); },
        [&](HWND window) { return answers.Send(window, 0); },
        [](HWND window) { return DestroyWindow(window); },
        [](HWND window) { return SetWindowLongPtrA(window, GWLP_USERDATA, 1) != 0; },
        [](HWND window) { return GetWindowLongPtrA(window, GWLP_USERDATA) != 0; },
        [](HWND window) {
            const MSG message = {window, WM_TEST, 0, 0, 0};
            return DispatchMessageA(&message) != 0;
        },
        [](HWND window) {
            MSG message;
            return PeekMessageA(&message, window, 0, 0, PM_REMOVE);
        },
    };
    for (const HWND window : {stale, HWND_MESSAGE, reinterpret_cast<HWND>(&onTheStack),
                              reinterpret_cast<HWND>(HANDLE(event)),
                              reinterpret_cast<HWND>(std::uintptr_t{0x7FFFFFFD})}) {
        EXPECT_FALSE(IsWindow(window));
        for (const auto& call : calls) {
            SetLastError(ERROR_SUCCESS);
            EXPECT_FALSE(call(window));
            EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE) << window;
        }
    }
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(HWND(live))));
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_TRUE(IsWindow(live));
    EXPECT_TRUE(DestroyWindow(inItsPlace));
    EXPECT_EQ(answers.count, 0);

    const CWindowThread other;
    EXPECT_FALSE(DestroyWindow(other));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(IsWindow(other));
    EXPECT_FALSE(PostThreadMessageA(0, WM_TEST, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
}

TEST(Window, ClassesHaveOneOwnerAndStayWhileTheyAreUsed) {
    const WNDCLASSA lower = {DefWindowProcA, "a class"};
    const WNDCLASSA upper = {DefWindowProcA, "A CLASS"};
    EXPECT_EQ(MakeWindow("a class"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_CANNOT_FIND_WND_CLASS);
    EXPECT_NE(RegisterClassA(&lower), 0);
    EXPECT_EQ(RegisterClassA(&upper), 0);
    EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);
    const HWND window = MakeWindow("A Class");
    EXPECT_NE(window, nullptr);
    EXPECT_FALSE(UnregisterClassA("a class", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_TRUE(UnregisterClassA("a class", nullptr));
}

// The first message's procedure retrieves the second one, whose procedure destroys the window while
// posted and sent messages for it are waiting.
TEST(Window, AProcedureMayRetrieveAndDestroyItsWindow) {
    const CTestHandle maySend = MakeEvent(false, false);
    const CTestHandle sent = MakeEvent(false, false);
    std::vector<WPARAM> seen;
    const CTestWindow window([&](HWND self, UINT, WPARAM wParam, LPARAM) -> LRESULT {
        seen.push_back(wParam);
        MSG message{};
        if (wParam == 1) {
            EXPECT_TRUE(PeekMessageA(&message, self, 0, 0, PM_REMOVE));
            EXPECT_EQ(DispatchMessageA(&message), 22);
            EXPECT_FALSE(IsWindow(self));
            return 11;
        }
        EXPECT_TRUE(PostMessageA(self, WM_TEST, 3, 0));
        SetEvent(maySend);
        WaitForSingleObject(sent, INFINITE);
        EXPECT_TRUE(DestroyWindow(self));
        EXPECT_FALSE(DestroyWindow(self));
        EXPECT_FALSE(PostMessageA(self, WM_TEST, 4, 0));
        return 22;
    });
    std::thread sender([&] {
        Answers answers;
        WaitForSingleObject(maySend, INFINITE);
        EXPECT_TRUE(answers.Send(window, 5));
        EXPECT_TRUE(answers.Send(window, 6));
        SetEvent(sent);
        PumpUntil([&] { return answers.count == 2; });
        EXPECT_EQ(answers.sum, 0);
    });
    for (const WPARAM value : {1, 2})
        PostMessageA(window, WM_TEST, value, 0);
    PostMessageA(nullptr, WM_TEST, 9, 0);
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, window, WM_TEST, WM_TEST, PM_REMOVE));
    EXPECT_EQ(DispatchMessageA(&message), 11);
    sender.join();
    EXPECT_EQ(seen, (std::vector<WPARAM>{1, 2}));
    const std::vector<MSG> left = TakeAll();
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].wParam, 9U);
}

// The window's thread ends without having retrieved anything.
TEST(Window, AThreadsEndEndsItsWindowsAndAnswersWhatWasSent) {
    const CTestHandle mayEnd = MakeEvent(true, false);
    Answers answers;
    CWindowThread other([](HWND, UINT, WPARAM, LPARAM) { return LRESULT{1}; },
                        [&](HWND) { WaitForSingleObject(mayEnd, INFINITE); });
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(PostMessageA(other, WM_TEST, 0, 0));
        EXPECT_TRUE(answers.Send(other, 0));
    }
    SetEvent(mayEnd);
    other.Join();
    EXPECT_FALSE(IsWindow(other));
    EXPECT_FALSE(PostMessageA(other, WM_TEST, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(PostThreadMessageA(other.Id(), WM_TEST, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
    PumpUntil([&] { return answers.count == 100; });
    EXPECT_EQ(answers.sum, 0);
}

// Posts and sends meet the end of a window, in every second round that of its thread, at any
// moment: each fails with the one reason or is accepted, and each accepted send is answered.
TEST(Window, PostsAndSendsSurviveARaceWithTheWindowsEnd) {
    for (int round = 0; round < 60; ++round) {
        std::atomic<bool> begun = false;
        CWindowThread other(DefWindowProcA, [&, round](HWND window) {
            begun.wait(false);
            MSG message;
            for (int i = 0; i < round; ++i)
                PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
            if (round % 2 == 0)
                DestroyWindow(window);
        });
        std::thread poster([&] {
            while (PostMessageA(other, WM_TEST, 0, 0) || GetLastError() == ERROR_NOT_ENOUGH_QUOTA)
                continue;
            EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        });
        Answers answers;
        int accepted = 0;
        for (DWORD failure = ERROR_SUCCESS; failure != ERROR_INVALID_WINDOW_HANDLE;) {
            failure = answers.Send(other, 0) ? ERROR_SUCCESS : GetLastError();
            accepted += failure == ERROR_SUCCESS ? 1 : 0;
            begun = true;
            begun.notify_one();
            TakeAll();
        }
        poster.join();
        other.Join();
        PumpUntil([&] { return answers.count >= accepted; });
        EXPECT_EQ(answers.count, accepted);
    }
}
