// Windows and messages.
#include "platform/Error.h"
#include "tests/platform/TestWindow.h"

#include <atomic>

namespace {

constexpr int kQueueMax = 10000;

void ExpectFailure(DWORD error, bool hasSucceeded) {
    EXPECT_FALSE(hasSucceeded);
    EXPECT_EQ(GetLastError(), error);
    SetLastError(ERROR_SUCCESS);
}

LRESULT ReturnFirst(HWND, UINT, WPARAM wParam, LPARAM) {
    return static_cast<LRESULT>(wParam);
}

} // namespace

// Two threads send to each other at once: each runs the other's messages and its own callbacks.
TEST(Message, SendsWithCallbackGoBothWays) {
    constexpr int kCount = 2000;
    HWND windows[2] = {};
    const CTestHandle ready[] = {MakeEvent(true, false), MakeEvent(true, false)};
    const auto run = [&](int side) {
        const auto self = std::this_thread::get_id();
        int handled = 0;
        const CTestWindow window([&](HWND, UINT, WPARAM wParam, LPARAM) {
            EXPECT_EQ(std::this_thread::get_id(), self);
            EXPECT_EQ(wParam, static_cast<WPARAM>(++handled)) << "in order";
            return static_cast<LRESULT>(2 * wParam);
        });
        windows[side] = window;
        SetEvent(ready[side]);
        WaitForSingleObject(ready[1 - side], INFINITE);
        Answers answers;
        for (int value = 1; value <= kCount; ++value)
            ASSERT_TRUE(answers.Send(windows[1 - side], static_cast<WPARAM>(value)));
        PumpUntil([&] { return handled == kCount && answers.count == kCount; });
        EXPECT_EQ(answers.sum, LRESULT{kCount} * (kCount + 1));
        EXPECT_EQ(answers.thread, self);
    };
    const std::jthread other(run, 0);
    run(1);
}

// The other thread ends without having retrieved anything, which answers with 0.
TEST(Message, AQueueIsBoundedAndAThreadsEndAnswers) {
    const CTestWindow window;
    const CTestHandle mayEnd = MakeEvent(true, false);
    CWindowThread other(ReturnFirst, [&](HWND) { WaitForSingleObject(mayEnd, INFINITE); });
    Answers answers;
    for (WPARAM value = 0; value < kQueueMax; ++value)
        ASSERT_TRUE(PostMessageA(window, WM_TEST, value, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, PostMessageA(window, WM_TEST, 0, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other)); // no room for an answer
    WPARAM next = 0;
    for (const MSG& message : TakeAll())
        EXPECT_EQ(message.wParam, next++);
    EXPECT_EQ(next, WPARAM{kQueueMax});

    for (int i = 1; i < kQueueMax; ++i)
        ASSERT_TRUE(answers.Send(other, 1));
    EXPECT_TRUE(PostMessageA(other, WM_TEST, 0, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other));
    SetEvent(mayEnd);
    other.Join();
    ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, PostMessageA(other, WM_TEST, 0, 0));
    EXPECT_EQ(answers.count, 0);
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(answers.count, kQueueMax - 1);
    EXPECT_EQ(answers.sum, 0);
}

TEST(Message, WaitsAreForHandlesAndMessagesAlike) {
    const CTestWindow window;
    const CTestHandle event = MakeEvent(false, true);
    std::vector<HANDLE> handles = {event};
    const auto wait = [&](DWORD milliseconds) {
        return MsgWaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE,
                                         milliseconds, QS_ALLINPUT);
    };
    PostMessageA(window, WM_TEST, 0, 0);
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0) << "the handles come first";
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1) << "still there";
    EXPECT_EQ(TakeAll().size(), 1U);
    EXPECT_EQ(wait(1), WAIT_TIMEOUT);
    handles.resize(MAXIMUM_WAIT_OBJECTS - 1, event);
    SetEvent(event);
    EXPECT_EQ(wait(0), WAIT_OBJECT_0);
    handles.back() = nullptr;
    ExpectFailure(ERROR_INVALID_HANDLE, wait(0) != WAIT_FAILED);
    handles.push_back(event);
    ExpectFailure(ERROR_INVALID_PARAMETER, wait(0) != WAIT_FAILED);
}

// What comes in meanwhile is left to the next call, and ends waits inside the procedure. The
// senders' end takes nothing of it back; the answers then go nowhere.
TEST(Message, ACallDeliversWhatWasSentBefore) {
    std::vector<WPARAM> handled;
    Answers answers;
    const CTestWindow window([&](HWND self, UINT, WPARAM wParam, LPARAM) {
        handled.push_back(wParam);
        if (wParam == 1) {
            EXPECT_EQ(WaitForMessage(0), WAIT_OBJECT_0) << "the second";
            std::thread([&] { EXPECT_TRUE(answers.Send(self, 3)); }).join();
        }
        return LRESULT{0};
    });
    std::thread([&] { EXPECT_TRUE(answers.Send(window, 1) && answers.Send(window, 2)); }).join();
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2}));
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2, 3}));
    EXPECT_EQ(answers.count, 0);
}

TEST(Window, StaleAndInventedWindowsAreRecognised) {
    constexpr DWORD kInvalid = ERROR_INVALID_WINDOW_HANDLE;
    const CTestHandle event = MakeEvent(true, true);
    const HWND stale = CTestWindow();
    const CTestWindow live(ReturnFirst);
    Answers answers;
    for (const HWND window : {stale, HWND{}, HWND_MESSAGE, reinterpret_cast<HWND>(&answers),
                              reinterpret_cast<HWND>(HANDLE(event))}) {
        const MSG message = {window, WM_TEST, 7, 0, 0};
        EXPECT_FALSE(IsWindow(window));
        ExpectFailure(kInvalid, PostMessageA(window, WM_TEST, 0, 0));
        ExpectFailure(kInvalid, answers.Send(window));
        ExpectFailure(kInvalid, DestroyWindow(window));
        ExpectFailure(kInvalid, SetWindowLongPtrA(window, GWLP_USERDATA, 1) != 0);
        ExpectFailure(kInvalid, GetWindowLongPtrA(window, GWLP_USERDATA) != 0);
        ExpectFailure(kInvalid, DispatchMessageA(&message) != 0);
    }
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(HWND(live))));
    EXPECT_EQ(answers.count, 0);
    std::thread([&] {
        const MSG message = {live, WM_TEST, 7, 0, 0};
        ExpectFailure(ERROR_ACCESS_DENIED, DestroyWindow(live));
        ExpectFailure(kInvalid, DispatchMessageA(&message) != 0);
    }).join();
    EXPECT_TRUE(answers.Send(live, 7));
    EXPECT_EQ(answers.sum, 7) << "a send to an own window is over when it returns";
}

TEST(Window, AClassStaysWhileItIsUsed) {
    {
        const CTestWindow window;
        ExpectFailure(ERROR_CLASS_HAS_WINDOWS, UnregisterClassA("TestWindow", nullptr));
    }
    EXPECT_TRUE(UnregisterClassA("TestWindow", nullptr));
    ExpectFailure(ERROR_CLASS_DOES_NOT_EXIST, UnregisterClassA("TestWindow", nullptr));
}

// The first message's procedure dispatches the second one, whose procedure destroys the window
// while a third one is waiting.
TEST(Window, AProcedureMayRetrieveAndDestroyItsWindow) {
    std::vector<WPARAM> seen;
    const CTestWindow window([&](HWND self, UINT, WPARAM wParam, LPARAM) -> LRESULT {
        seen.push_back(wParam);
        if (wParam == 1) {
            EXPECT_EQ(DispatchNext(), 22);
            EXPECT_FALSE(IsWindow(self));
            return 11;
        }
        EXPECT_TRUE(DestroyWindow(self));
        return 22;
    });
    const CTestWindow other;
    for (const WPARAM value : {1, 2, 3})
        PostMessageA(window, WM_TEST, value, 0);
    PostMessageA(other, WM_TEST, 9, 0);
    EXPECT_EQ(DispatchNext(), 11);
    EXPECT_EQ(seen, (std::vector<WPARAM>{1, 2}));
    const std::vector<MSG> left = TakeAll();
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].wParam, 9U);
}

// Posts and sends meet the end of a window, in every second round that of its thread, at any
// moment: each fails with the one reason or is accepted, and each accepted send is answered.
TEST(Window, PostsAndSendsSurviveARaceWithTheWindowsEnd) {
    for (int round = 0; round < 150; ++round) {
        std::atomic<bool> begun = false;
        CWindowThread other(DefWindowProcA, [&, round](HWND window) {
            begun.wait(false);
            MSG message;
            for (int i = 0; i < round; ++i)
                Retrieve(message);
            if (round % 2 == 0)
                DestroyWindow(window);
        });
        // Without a pause between the calls, so that one of them meets the end.
        const auto untilGone = [](const auto& call) {
            while (call() || GetLastError() == ERROR_NOT_ENOUGH_QUOTA)
                continue;
            EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        };
        const std::jthread poster(
            [&] { untilGone([&] { return PostMessageA(other, WM_TEST, 0, 0); }); });
        Answers answers;
        int accepted = 0;
        untilGone([&] {
            const BOOL isAccepted = answers.Send(other);
            accepted += isAccepted;
            begun = true;
            begun.notify_one();
            TakeAll();
            return isAccepted;
        });
        other.Join();
        PumpUntil([&] { return answers.count >= accepted; });
        EXPECT_EQ(answers.count, accepted);
    }
}
