// Handles, events and waits.
#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <vector>

namespace {

HANDLE HandleOf(std::uintptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

void ExpectInvalid(HANDLE handle) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(SetEvent(handle));
    EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

} // namespace

TEST(Handle, ClosedReusedAndInventedOnesAreRecognised) {
    const HANDLE closed = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    ASSERT_NE(closed, nullptr);
    const auto value = reinterpret_cast<std::uintptr_t>(closed);
    for (const std::uintptr_t offset : {1, 2, 3})
        ExpectInvalid(HandleOf(value + offset));
    ExpectInvalid(HandleOf(value + (std::uintptr_t{1} << 32)));
    EXPECT_TRUE(CloseHandle(closed));
    ExpectInvalid(closed);

    const CTestHandle successor = MakeEvent(true, true);
    ExpectInvalid(closed);
    ExpectInvalid(nullptr);
    ExpectInvalid(INVALID_HANDLE_VALUE);
    ExpectInvalid(HandleOf(0x7FFFFFFC));
    EXPECT_EQ(WaitForSingleObject(successor, 0), WAIT_OBJECT_0);
    EXPECT_FALSE(TerminateThread(successor, 1)) << "one of another kind";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Handle, ClosingEndsTheWaitsOfOthers) {
    for (int round = 0; round < 200; ++round) {
        const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        const CTestHandle other = MakeEvent(true, false);
        DWORD result = WAIT_TIMEOUT;
        DWORD error = ERROR_SUCCESS;
        auto wait = [&] {
            const HANDLE handles[] = {other, event};
            result = WaitForMultipleObjects(2, handles, FALSE, INFINITE);
            error = GetLastError();
        };
        const CTestHandle thread = StartThread(wait);
        if (round % 2 != 0)
            Sleep(0);
        EXPECT_TRUE(CloseHandle(event));
        EXPECT_TRUE(AwaitEnd(thread));
        EXPECT_EQ(result, WAIT_FAILED);
        EXPECT_EQ(error, ERROR_INVALID_HANDLE);
    }
}

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
    toggle();
    EXPECT_TRUE(AwaitEnd(first));
    EXPECT_EQ(WaitForSingleObject(event, 1), WAIT_TIMEOUT);
    const HANDLE behindAnother[] = {first, event};
    SetEvent(event);
    EXPECT_EQ(WaitForMultipleObjects(2, behindAnother, FALSE, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
}

TEST(Wait, TheLowestSignalledIndexWinsAndOnlyItIsConsumed) {
    std::vector<CTestHandle> owners;
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles{};
    for (HANDLE& handle : handles) {
        owners.push_back(MakeEvent(false, false));
        handle = owners.back();
    }
    for (const DWORD count : {4U, 8U, 9U, 64U}) {
        const DWORD last = count - 1;
        for (const DWORD index : {last, last / 2, DWORD{0}})
            SetEvent(handles[index]);
        EXPECT_EQ(WaitForMultipleObjects(count, handles.data(), FALSE, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForMultipleObjects(count, handles.data(), FALSE, INFINITE), last / 2);
        EXPECT_EQ(WaitForMultipleObjects(count, handles.data(), FALSE, 0), last);
        EXPECT_EQ(WaitForMultipleObjects(count, handles.data(), FALSE, 0), WAIT_TIMEOUT);
    }
}

TEST(Wait, AWrongHandleFailsTheWaitAndNothingIsConsumed) {
    const CTestHandle event = MakeEvent(false, true);
    const HANDLE withBadOne[] = {event, nullptr};
    EXPECT_EQ(WaitForMultipleObjects(2, withBadOne, FALSE, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

// A signal handler that runs meanwhile neither ends a wait nor shortens it.
TEST(Wait, SignalsDoNotEndAWait) {
    struct sigaction former {};
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
    const CTestHandle event = MakeEvent(false, false);
    const pthread_t waiter = pthread_self();
    auto disturb = [&] {
        for (int i = 0; i < 20; ++i) {
            pthread_kill(waiter, SIGUSR1);
            Sleep(1);
        }
        SetEvent(event);
    };
    const CTestHandle thread = StartThread(disturb);
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(AwaitEnd(thread));
    sigaction(SIGUSR1, &former, nullptr);
}
