#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

// Every signal lets one of the waiting threads through and no more, in whichever of its waits the
// event comes second.
TEST(Event, AutoResetLetsExactlyOneOfManyWaitersThrough) {
    constexpr int WAITERS = 4;
    constexpr int SIGNALS = 2000;
    const CTestHandle event = MakeEvent(false, false);
    const CTestHandle stop = MakeEvent(true, false);
    const CTestHandle taken = MakeEvent(false, false);
    std::atomic<int> count = 0;
    auto waiter = [&] {
        const HANDLE handles[] = {stop, event};
        while (WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
            ++count;
            SetEvent(taken);
        }
    };
    std::vector<CTestHandle> threads;
    for (int i = 0; i < WAITERS; ++i)
        threads.push_back(StartThread(waiter));
    for (int signal = 1; signal <= SIGNALS; ++signal) {
        SetEvent(event);
        ASSERT_EQ(WaitForSingleObject(taken, INFINITE), WAIT_OBJECT_0);
        ASSERT_EQ(count, signal);
    }
    SetEvent(stop);
    for (const CTestHandle& thread : threads)
        EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_EQ(count, SIGNALS);
}

// What was written before a signal is seen after the wait that took it, also when the signal found
// the event signalled already.
TEST(Event, SignalsPublishWhatWasWrittenBefore) {
    constexpr int LAST = 20000;
    const CTestHandle event = MakeEvent(false, false);
    std::atomic<int> value = 0;
    auto writer = [&] {
        for (int i = 1; i <= LAST; ++i) {
            value.store(i, std::memory_order_relaxed);
            SetEvent(event);
        }
    };
    const CTestHandle thread = StartThread(writer);
    while (value.load(std::memory_order_relaxed) != LAST)
        ASSERT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(AwaitEnd(thread));
}

// Resets against sets leave flag and descriptor in step: afterwards both states can be reached.
TEST(Event, SurvivesRacingSetsAndResets) {
    const CTestHandle event = MakeEvent(true, false);
    auto toggle = [&] {
        for (int i = 0; i < 5000; ++i) {
            SetEvent(event);
            ResetEvent(event);
        }
    };
    const CTestHandle first = StartThread(toggle);
    const CTestHandle second = StartThread(toggle);
    EXPECT_TRUE(AwaitEnd(first));
    EXPECT_TRUE(AwaitEnd(second));
    EXPECT_EQ(WaitForSingleObject(event, 1), WAIT_TIMEOUT);
    const HANDLE behindAnother[] = {first, event};
    SetEvent(event);
    EXPECT_EQ(WaitForMultipleObjects(2, behindAnother, FALSE, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
}
