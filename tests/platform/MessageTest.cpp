#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/platform/TestWindow.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

namespace {

constexpr int QUEUE_MAX = 10000;

} // namespace

// Every second message goes to the thread itself; the two kinds share one order. A full queue is
// met with patience, which the receiver's progress ends.
TEST(Message, PostsOfManyThreadsArriveWholeAndInEachSendersOrder) {
    constexpr WPARAM SENDERS = 4;
    constexpr LPARAM EACH = 6000;
    std::array<LPARAM, SENDERS> next{};
    std::array<LPARAM, SENDERS> dispatched{};
    const CTestWindow window([&](HWND, UINT number, WPARAM sender, LPARAM value) {
        EXPECT_EQ(number, WM_TEST + sender + static_cast<UINT>(value));
        return ++dispatched[sender];
    });
    const DWORD receiver = OwnThreadId();
    std::vector<std::thread> senders;
    for (WPARAM sender = 0; sender < SENDERS; ++sender) {
        senders.emplace_back([&, sender] {
            for (LPARAM value = 0; value < EACH; ++value) {
                const UINT number = WM_TEST + static_cast<UINT>(sender + value);
                while (!(value % 2 != 0 ? PostThreadMessageA(receiver, number, sender, value)
                                        : PostMessageA(window, number, sender, value))) {
                    ASSERT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
                    Sleep(1);
                }
            }
        });
    }
    for (LPARAM count = 0; count < LPARAM{SENDERS} * EACH; ++count) {
        ASSERT_EQ(WaitForMessage(INFINITE), WAIT_OBJECT_0);
        MSG message{};
        ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        ASSERT_LT(message.wParam, SENDERS);
        ASSERT_EQ(message.lParam, next[message.wParam]++);
        ASSERT_EQ(message.hwnd, message.lParam % 2 != 0 ? nullptr : HWND(window));
        DispatchMessageA(&message);
    }
    for (std::thread& sender : senders)
        sender.join();
    EXPECT_EQ(WaitForMessage(0), WAIT_TIMEOUT);
    for (WPARAM sender = 0; sender < SENDERS; ++sender)
        EXPECT_EQ(dispatched[sender], EACH / 2);
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
        for (int value = 1; value <= COUNT; ++value) {
            ASSERT_TRUE(answers.Send(windows[1 - side], static_cast<WPARAM>(value)));
            if (value == COUNT / 2)
                TakeAll();
        }
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

TEST(Message, TheQueuesAreBounded) {
    const CTestWindow window;
    for (WPARAM value = 0; value < QUEUE_MAX; ++value)
        ASSERT_TRUE(PostMessageA(value % 2 != 0 ? nullptr : HWND(window), WM_TEST, value, 0));
    EXPECT_FALSE(PostMessageA(window, WM_TEST, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
    EXPECT_FALSE(PostThreadMessageA(OwnThreadId(), WM_TEST, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
    MSG message{};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 0U);
    EXPECT_TRUE(PostMessageA(window, WM_TEST, QUEUE_MAX, 0));
    EXPECT_EQ(TakeAll().size(), std::size_t{QUEUE_MAX});

    // Sent messages: neither more than that for one receiver nor, answered or not, of one sender.
    Answers answers;
    const CTestHandle mayEnd = MakeEvent(true, false);
    const CWindowThread free;
    {
        const CWindowThread busy(DefWindowProcA,
                                 [&](HWND) { WaitForSingleObject(mayEnd, INFINITE); });
        for (int i = 0; i < QUEUE_MAX; ++i)
            ASSERT_TRUE(answers.Send(busy, 0));
        EXPECT_FALSE(answers.Send(free, 0));
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
        std::thread([&] {
            for (int i = 0; i <= QUEUE_MAX; ++i)
                ASSERT_FALSE(answers.Send(busy, 0));
            EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
            EXPECT_TRUE(answers.Send(free, 0)) << "refused ones do not count";
        }).join();
        SetEvent(mayEnd);
    }
    EXPECT_FALSE(answers.Send(free, 0)) << "answered, but not taken note of";
    PumpUntil([&] { return answers.count == QUEUE_MAX; });
    EXPECT_TRUE(answers.Send(free, 0));
    PumpUntil([&] { return answers.count == QUEUE_MAX + 1; });
}

TEST(Message, FiltersLetThroughWhatTheyName) {
    const CTestWindow window;
    for (const HWND receiver : {HWND(nullptr), HWND(window), HWND(window)})
        ASSERT_TRUE(PostMessageA(receiver, WM_TEST, 0, 0));
    EXPECT_EQ(TakeAll(window, WM_TEST + 1, WM_TEST + 9).size(), 0U);
    EXPECT_EQ(TakeAll(platform::NO_WINDOW).size(), 1U);
    EXPECT_EQ(TakeAll(window, WM_TEST, WM_TEST).size(), 2U);
}

TEST(Message, WaitsAreForHandlesAndMessagesAlike) {
    const CTestHandle event = MakeEvent(false, false);
    const HANDLE handles[] = {event};
    const auto wait = [&](DWORD milliseconds) {
        return MsgWaitForMultipleObjects(1, handles, FALSE, milliseconds, QS_ALLINPUT);
    };
    PostMessageA(nullptr, WM_TEST, 0, 0);
    SetEvent(event);
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0) << "the handles come first";
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1);
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1) << "seen, but still there";
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(wait(1), WAIT_TIMEOUT);

    // A blocked wait ends with a post, with a sent message, with a callback.
    const auto self = OwnThreadId();
    std::thread poster([&] { PostThreadMessageA(self, WM_TEST, 0, 0); });
    EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1);
    poster.join();
    EXPECT_EQ(TakeAll().size(), 1U);
    int handled = 0;
    const CTestWindow window([&](HWND, UINT, WPARAM, LPARAM) { return ++handled; });
    Answers ofOther;
    const CWindowThread other([&](HWND, UINT, WPARAM, LPARAM) { return ofOther.Send(window, 0); });
    Answers answers;
    EXPECT_TRUE(answers.Send(other, 0));
    while (handled == 0 || answers.count == 0) {
        ASSERT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 1);
        EXPECT_TRUE(TakeAll().empty());
    }
    EXPECT_EQ(wait(0), WAIT_TIMEOUT);
}

TEST(Message, WrongWaitsFailAndTerminationEndsThem) {
    const CTestHandle event = MakeEvent(true, true);
    std::vector<HANDLE> handles(MAXIMUM_WAIT_OBJECTS, event);
    EXPECT_EQ(MsgWaitForMultipleObjects(64, handles.data(), FALSE, 0, QS_ALLINPUT), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(MsgWaitForMultipleObjects(63, handles.data(), FALSE, 0, QS_ALLINPUT), WAIT_OBJECT_0);
    handles[62] = nullptr;
    EXPECT_EQ(MsgWaitForMultipleObjects(63, handles.data(), FALSE, 0, QS_ALLINPUT), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);

    const CTestHandle begun = MakeEvent(true, false);
    DWORD result = 0;
    auto waiter = [&] {
        SetEvent(begun);
        result = WaitForMessage(INFINITE);
    };
    const CTestHandle thread = StartThread(waiter);
    ASSERT_EQ(WaitForSingleObject(begun, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(thread, 5), WAIT_TIMEOUT);
    EXPECT_TRUE(TerminateThread(thread, 0));
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_EQ(result, WAIT_FAILED);
}

// What comes in meanwhile is left to the next call, and ends waits inside the procedure. The
// sender's end takes nothing of it back; the answers then go nowhere.
TEST(Message, ACallDeliversWhatWasSentBefore) {
    const CTestHandle delivered = MakeEvent(false, false);
    const CTestHandle allSent = MakeEvent(false, false);
    const CTestHandle twoSent = MakeEvent(false, false);
    std::vector<WPARAM> handled;
    const CTestWindow window([&](HWND, UINT, WPARAM wParam, LPARAM) {
        handled.push_back(wParam);
        if (wParam == 1) {
            EXPECT_EQ(WaitForMessage(0), WAIT_OBJECT_0) << "the second";
            SetEvent(delivered);
            WaitForSingleObject(allSent, INFINITE);
        }
        return LRESULT{0};
    });
    Answers answers;
    std::thread sender([&] {
        EXPECT_TRUE(answers.Send(window, 1) && answers.Send(window, 2));
        SetEvent(twoSent);
        WaitForSingleObject(delivered, INFINITE);
        EXPECT_TRUE(answers.Send(window, 3));
        SetEvent(allSent);
    });
    WaitForSingleObject(twoSent, INFINITE);
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(handled, (std::vector<WPARAM>{1, 2}));
    sender.join();
    PumpUntil([&] { return handled.size() == 3; });
    EXPECT_EQ(answers.count, 0);
}
