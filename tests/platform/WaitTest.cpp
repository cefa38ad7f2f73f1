#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <vector>

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
