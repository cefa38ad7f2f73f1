// Windows and messages.
#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/platform/TestWindow.h"

#include <array>
#include <atomic>

namespace {

constexpr int QUEUE_MAX = 10000;

void ExpectFailure(DWORD error, BOOL result) {
    EXPECT_FALSE(result);
    EXPECT_EQ(GetLastError(), error);
    SetLastError(ERROR_SUCCESS);
}

} // namespace

// A full queue is met with patience, which the receiver's progress ends.
TEST(Message, PostsOfManyThreadsArriveWholeAndInEachSendersOrder) {
    constexpr std::size_t SENDERS = 4;
    constexpr LPARAM EACH = 4000;
    std::array<LPARAM, SENDERS> next{};
    const CTestWindow window([&](HWND, UINT number, WPARAM sender, LPARAM value) {
        EXPECT_EQ(number, WM_TEST + sender);
        EXPECT_EQ(value, next.at(sender)++);
        return 0;
    });
    std::vector<std::thread> senders;
    for (UINT sender = 0; sender < SENDERS; ++sender) {
        senders.emplace_back([&, sender] {
            for (LPARAM value = 0; value < EACH; ++value)
                while (!PostMessageA(window, WM_TEST + sender, sender, value))
                    Sleep(1);
        });
    }
    PumpUntil([&] { return next == std::array<LPARAM, SENDERS>{EACH, EACH, EACH, EACH}; });
    for (std::thread& sender : senders)
        sender.join();
    EXPECT_EQ(WaitForMessage(0), WAIT_TIMEOUT);
}

// Two threads send to each other at once: each runs the other's messages and its own callbacks.
TEST(Message, SendsWithCallbackGoBothWays) {
    constexpr int COUNT = 2000;
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
        for (int value = 1; value <= COUNT; ++value)
            ASSERT_TRUE(answers.Send(windows[1 - side], static_cast<WPARAM>(value)));
        PumpUntil([&] { return handled == COUNT && answers.count == COUNT; });
        EXPECT_EQ(answers.sum, LRESULT{COUNT} * (COUNT + 1));
        EXPECT_EQ(answers.thread, self);
    };
    std::thread other(run, 0);
    run(1);
    other.join();
}

TEST(Message, ASendToAnOwnWindowIsOverWhenItReturns) {
    Answers answers;
    const CTestWindow window([](HWND, UINT, WPARAM wParam, LPARAM) { return LRESULT(wParam); });
    EXPECT_TRUE(answers.Send(window, 7));
    EXPECT_EQ(answers.sum, 7);
    EXPECT_EQ(WaitForMessage(0), WAIT_TIMEOUT);
}

// The other thread ends without having retrieved anything, which answers with 0.
TEST(Message, AQueueIsBoundedAndAThreadsEndAnswers) {
    const CTestWindow window;
    const CTestHandle mayEnd = MakeEvent(true, false);
    CWindowThread other([](HWND, UINT, WPARAM, LPARAM) { return LRESULT{1}; },
                        [&](HWND) { WaitForSingleObject(mayEnd, INFINITE); });
    Answers answers;
    for (WPARAM value = 0; value < QUEUE_MAX; ++value)
        ASSERT_TRUE(PostMessageA(value % 2 != 0 ? nullptr : HWND(window), WM_TEST, value, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, PostMessageA(window, WM_TEST, 0, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, PostMessageA(nullptr, WM_TEST, 0, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other)); // no room for an answer
    EXPECT_EQ(TakeAll(platform::NO_WINDOW).size(), std::size_t{QUEUE_MAX / 2});
    EXPECT_TRUE(PostMessageA(window, WM_TEST, 0, 0));
    EXPECT_EQ(TakeAll(window).size(), std::size_t{QUEUE_MAX / 2 + 1});

    for (int i = 1; i < QUEUE_MAX; ++i)
        ASSERT_TRUE(answers.Send(other));
    EXPECT_TRUE(PostMessageA(other, WM_TEST, 0, 0));
    ExpectFailure(ERROR_NOT_ENOUGH_QUOTA, answers.Send(other));
    SetEvent(mayEnd);
    other.Join();
    EXPECT_FALSE(IsWindow(other));
    ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, PostMessageA(other, WM_TEST, 0, 0));
    EXPECT_EQ(answers.count, 0);
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(answers.count, QUEUE_MAX - 1);
    EXPECT_EQ(answers.sum, 0);
}

TEST(Message, WaitsAreForHandlesAndMessagesAlike) {
    const CTestHandle event = MakeEvent(false, true);
    const auto wait = [](const std::vector<HANDLE>& handles, DWORD milliseconds) {
        return MsgWaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE,
                                         milliseconds, QS_ALLINPUT);
    };
    PostMessageA(nullptr, WM_TEST, 0, 0);
    EXPECT_EQ(wait({event}, INFINITE), WAIT_OBJECT_0) << "the handles come first";
    EXPECT_EQ(wait({event}, INFINITE), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(wait({event}, INFINITE), WAIT_OBJECT_0 + 1) << "still there";
    EXPECT_EQ(TakeAll().size(), 1U);
    EXPECT_EQ(wait({event}, 1), WAIT_TIMEOUT);

    std::vector<HANDLE> handles(MAXIMUM_WAIT_OBJECTS - 1, event);
    SetEvent(event);
    EXPECT_EQ(wait(handles, 0), WAIT_OBJECT_0);
    handles.back() = nullptr;
    EXPECT_EQ(wait(handles, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    handles.push_back(event);
    EXPECT_EQ(wait(handles, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
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
    MSG message;
    EXPECT_FALSE(Retrieve(message));
    EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2}));
    EXPECT_FALSE(Retrieve(message));
    EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2, 3}));
    EXPECT_EQ(answers.count, 0);
}

TEST(Window, StaleAndInventedWindowsAreRecognised) {
    const CTestHandle event = MakeEvent(true, true);
    const HWND stale = CTestWindow();
    const CTestWindow live;
    Answers answers;
    MSG message{};
    for (const HWND window :
         {stale, HWND_MESSAGE, reinterpret_cast<HWND>(&answers),
          reinterpret_cast<HWND>(HANDLE(event)), reinterpret_cast<HWND>(0x7FFFFFFD)}) {
        message.hwnd = window;
        EXPECT_FALSE(IsWindow(window));
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, PostMessageA(window, WM_TEST, 0, 0));
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, answers.Send(window));
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, DestroyWindow(window));
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE,
                      SetWindowLongPtrA(window, GWLP_USERDATA, 1) != 0);
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, GetWindowLongPtrA(window, GWLP_USERDATA) != 0);
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, DispatchMessageA(&message) != 0);
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, Retrieve(message, window));
    }
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(HWND(live))));
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_TRUE(IsWindow(live));
    EXPECT_EQ(answers.count, 0);
    message.hwnd = live;
    std::thread([&] {
        ExpectFailure(ERROR_ACCESS_DENIED, DestroyWindow(live));
        ExpectFailure(ERROR_INVALID_WINDOW_HANDLE, DispatchMessageA(&message) != 0);
    }).join();
    EXPECT_TRUE(IsWindow(live));
}

TEST(Window, ClassesHaveOneOwnerAndStayWhileTheyAreUsed) {
    const WNDCLASSA windowClass = {DefWindowProcA, "a class"};
    const auto make = [] {
        return CreateWindowExA(0, "a class", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                               nullptr);
    };
    ExpectFailure(ERROR_CANNOT_FIND_WND_CLASS, make() != nullptr);
    EXPECT_NE(RegisterClassA(&windowClass), 0);
    ExpectFailure(ERROR_CLASS_ALREADY_EXISTS, RegisterClassA(&windowClass));
    const HWND window = make();
    ExpectFailure(ERROR_CLASS_HAS_WINDOWS, UnregisterClassA("a class", nullptr));
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_TRUE(UnregisterClassA("a class", nullptr));
    ExpectFailure(ERROR_CLASS_DOES_NOT_EXIST, UnregisterClassA("a class", nullptr));
}

// The first message's procedure retrieves the second one, whose procedure destroys the window while
// posted and sent messages for it are waiting.
TEST(Window, AProcedureMayRetrieveAndDestroyItsWindow) {
    const CTestHandle sent = MakeEvent(false, false);
    std::vector<WPARAM> seen;
    std::thread sender;
    const CTestWindow window([&](HWND self, UINT, WPARAM wParam, LPARAM) -> LRESULT {
        seen.push_back(wParam);
        if (wParam == 1) {
            MSG message{};
            EXPECT_TRUE(Retrieve(message, self));
            EXPECT_EQ(DispatchMessageA(&message), 22);
            EXPECT_FALSE(IsWindow(self));
            return 11;
        }
        EXPECT_TRUE(PostMessageA(self, WM_TEST, 3, 0));
        sender = std::thread([&sent, self] {
            Answers answers;
            EXPECT_TRUE(answers.Send(self, 5) && answers.Send(self, 6));
            SetEvent(sent);
            PumpUntil([&] { return answers.count == 2; });
            EXPECT_EQ(answers.sum, 0);
        });
        WaitForSingleObject(sent, INFINITE);
        EXPECT_TRUE(DestroyWindow(self));
        return 22;
    });
    for (const WPARAM value : {1, 2})
        PostMessageA(window, WM_TEST, value, 0);
    PostMessageA(nullptr, WM_TEST, 9, 0);
    MSG message{};
    EXPECT_TRUE(Retrieve(message, window));
    EXPECT_EQ(DispatchMessageA(&message), 11);
    sender.join();
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
        std::thread poster([&] { untilGone([&] { return PostMessageA(other, WM_TEST, 0, 0); }); });
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
        poster.join();
        other.Join();
        PumpUntil([&] { return answers.count >= accepted; });
        EXPECT_EQ(answers.count, accepted);
    }
}
