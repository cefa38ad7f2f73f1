// Windows and messages.
#include "platform/Error.h"
#include "tests/platform/TestWindow.h"

#include <atomic>
#include <future>

namespace {

constexpr int kQueueMax = 10000;
constexpr DWORD kInvalid = ERROR_INVALID_WINDOW_HANDLE;

void ExpectFailure(DWORD error, bool hasSucceeded) {
    EXPECT_FALSE(hasSucceeded);
    EXPECT_EQ(GetLastError(), error);
    SetLastError(ERROR_SUCCESS);
}

LRESULT ReturnValue(HWND, UINT, WPARAM value, LPARAM) {
    return static_cast<LRESULT>(value);
}

} // namespace

// Two threads send to each other at once: each runs the other's messages and its own callbacks.
TEST(Message, SendsWithCallbackGoBothWays) {
    constexpr int kCount = 2000;
    std::promise<HWND> windows[2];
    const auto run = [&](int side) {
        const auto self = std::this_thread::get_id();
        int handled = 0;
        const CTestWindow window([&](HWND, UINT, WPARAM value, LPARAM) {
            EXPECT_EQ(std::this_thread::get_id(), self);
            EXPECT_EQ(value, static_cast<WPARAM>(++handled)) << "in order";
            return static_cast<LRESULT>(2 * value);
        });
        windows[side].set_value(window);
        const HWND other = windows[1 - side].get_future().get();
        Answers answers;
        for (int value = 1; value <= kCount; ++value)
            ASSERT_TRUE(answers.Send(other, static_cast<WPARAM>(value)));
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
    CWindowThread other(ReturnValue, [&](HWND) { WaitForSingleObject(mayEnd, INFINITE); });
    Answers answers;
    Values posted;
    for (; posted.size() < kQueueMax; posted.push_back(posted.size()))
        ASSERT_TRUE(Post(window, posted.size()));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, Post(window));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other)); // no room for an answer
    EXPECT_EQ(TakeAll(), posted);

    for (int i = 1; i < kQueueMax; ++i)
        ASSERT_TRUE(answers.Send(other, 1));
    EXPECT_TRUE(Post(other));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other));
    SetEvent(mayEnd);
    other.Join();
    ExpectFailure(kInvalid, Post(other));
    EXPECT_EQ(answers.count, 0);
    EXPECT_EQ(TakeAll(), Values());
    EXPECT_EQ(answers.count, kQueueMax - 1);
    EXPECT_EQ(answers.sum, 0);
}

TEST(Message, WaitsAreForHandlesAndMessagesAlike) {
    const CTestWindow window;
    const CTestHandle event = MakeEvent(false, true);
    Post(window);
    EXPECT_EQ(WaitForMessage(INFINITE, {event}), WAIT_OBJECT_0) << "the handles come first";
    EXPECT_EQ(WaitForMessage(INFINITE, {event}), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(WaitForMessage(INFINITE, {event}), WAIT_OBJECT_0 + 1) << "still there";
    EXPECT_EQ(TakeAll(), Values{0});
    EXPECT_EQ(WaitForMessage(1, {event}), WAIT_TIMEOUT);
    ExpectFailure(ERROR_INVALID_PARAMETER,
                  WaitForMessage(0, std::vector<HANDLE>(MAXIMUM_WAIT_OBJECTS, event)) !=
                      WAIT_FAILED);
}

// What comes in meanwhile is left to the next call, and ends waits inside the procedure. The
// senders' end takes nothing of it back; the answers then go nowhere.
TEST(Message, ACallDeliversWhatWasSentBefore) {
    Values handled;
    Answers answers;
    const CTestWindow window([&](HWND self, UINT, WPARAM value, LPARAM) {
        handled.push_back(value);
        if (value == 1) {
            EXPECT_EQ(WaitForMessage(0), WAIT_OBJECT_0) << "the second";
            std::thread([&] { EXPECT_TRUE(answers.Send(self, 3)); }).join();
        }
        return LRESULT{0};
    });
    std::thread([&] { EXPECT_TRUE(answers.Send(window, 1) && answers.Send(window, 2)); }).join();
    EXPECT_EQ(TakeAll(), Values());
    EXPECT_EQ(handled, (Values{1, 2}));
    EXPECT_EQ(TakeAll(), Values());
    EXPECT_EQ(handled, (Values{1, 2, 3}));
    EXPECT_EQ(answers.count, 0);
}

TEST(Window, StaleAndInventedWindowsAreRecognised) {
    const HWND stale = CTestWindow();
    const CTestWindow live(ReturnValue);
    Answers answers;
    for (const HWND window : {stale, HWND{}, HWND_MESSAGE, reinterpret_cast<HWND>(&answers)}) {
        const MSG message = {window, WM_TEST, 7, 0, 0};
        EXPECT_FALSE(IsWindow(window));
        ExpectFailure(kInvalid, Post(window));
        ExpectFailure(kInvalid, answers.Send(window));
        ExpectFailure(kInvalid, DestroyWindow(window));
        ExpectFailure(kInvalid, SetWindowLongPtrA(window, GWLP_USERDATA, 1) != 0);
        ExpectFailure(kInvalid, DispatchMessageA(&message) != 0);
    }
    EXPECT_EQ(answers.count, 0);
    std::thread([&] {
        const MSG message = {live, WM_TEST, 7, 0, 0};
        ExpectFailure(ERROR_ACCESS_DENIED, DestroyWindow(live));
        ExpectFailure(kInvalid, DispatchMessageA(&message) != 0);
    }).join();
    EXPECT_TRUE(answers.Send(live, 7));
    EXPECT_EQ(answers.sum, 7) << "a send to an own window is over when it returns";
    ExpectFailure(ERROR_CLASS_HAS_WINDOWS, UnregisterClassA("TestWindow", nullptr));
}

// The first message's procedure dispatches the second one, whose procedure destroys the window
// while a third one is waiting.
TEST(Window, AProcedureMayRetrieveAndDestroyItsWindow) {
    Values seen;
    const CTestWindow window([&](HWND self, UINT, WPARAM value, LPARAM) -> LRESULT {
        seen.push_back(value);
        if (value == 1) {
            EXPECT_EQ(DispatchNext(), 22);
            EXPECT_FALSE(IsWindow(self));
            return 11;
        }
        EXPECT_TRUE(DestroyWindow(self));
        return 22;
    });
    const CTestWindow other;
    for (const WPARAM value : {1, 2, 3})
        Post(window, value);
    Post(other, 9);
    EXPECT_EQ(DispatchNext(), 11);
    EXPECT_EQ(seen, (Values{1, 2}));
    EXPECT_EQ(TakeAll(), Values{9});
}

// Posts and sends meet the end of a window, in every second round that of its thread, at any
// moment: each fails with the one reason or is accepted, and each accepted send is answered.
TEST(Window, PostsAndSendsSurviveARaceWithTheWindowsEnd) {
    for (int round = 0; round < 150; ++round) {
        std::atomic<bool> begun = false;
        CWindowThread other(DefWindowProcA, [&, round](HWND window) {
            begun.wait(false);
            for (int i = 0; i < round; ++i)
                DispatchNext();
            if (round % 2 == 0)
                DestroyWindow(window);
        });
        // Without a pause between the calls, so that one of them meets the end.
        const auto untilGone = [](const auto& call) {
            while (call() || GetLastError() == ERROR_NOT_ENOUGH_QUOTA)
                continue;
            EXPECT_EQ(GetLastError(), kInvalid);
        };
        const std::jthread poster([&] { untilGone([&] { return Post(other); }); });
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
