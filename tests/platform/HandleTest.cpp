// Handles, events and waits.
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/HandleTable.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace {

void ExpectInvalid(HANDLE handle) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(SetEvent(handle));
    EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

// What poll() sees of an event; more than its flag says would make waits spin.
bool IsShown(HANDLE event) {
    const int descriptor = platform::FindHandle(event)->WaitDescriptor();
    return platform::WaitForDescriptor(descriptor, POLLIN, 0) != 0;
}

} // namespace

TEST(Handle, ClosedReusedAndInventedOnesAreRecognised) {
    const HANDLE closed = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    const auto value = reinterpret_cast<std::uintptr_t>(closed);
    EXPECT_TRUE(CloseHandle(closed));
    ExpectInvalid(closed);
    const CTestHandle successor = MakeEvent(true, true);
    const auto inUse = reinterpret_cast<std::uintptr_t>(HANDLE(successor));
    for (const std::uintptr_t wrong :
         {value, inUse + 1, inUse + 2, inUse + (std::uintptr_t{1} << 32), std::uintptr_t{0},
          ~std::uintptr_t{0}, std::uintptr_t{0x7FFFFFFC}})
        ExpectInvalid(reinterpret_cast<HANDLE>(wrong));
    EXPECT_FALSE(TerminateThread(successor, 1)) << "one of another kind";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    const HANDLE withBadOne[] = {successor, nullptr};
    EXPECT_EQ(WaitForMultipleObjects(2, withBadOne, FALSE, 0), WAIT_FAILED);
}

TEST(Handle, ClosingEndsTheWaitsOfOthers) {
    const CTestHandle other = MakeEvent(true, false);
    for (int round = 0; round < 200; ++round) {
        const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        const std::jthread waiter([&] {
            const HANDLE handles[] = {other, event};
            EXPECT_EQ(WaitForMultipleObjects(2, handles, FALSE, INFINITE), WAIT_FAILED);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        });
        if (round % 2 != 0)
            Sleep(0);
        EXPECT_TRUE(CloseHandle(event));
    }
}

// Every signal lets one of the waiting threads through and no more, in whichever of its waits the
// event comes second.
TEST(Event, AutoResetLetsExactlyOneOfManyWaitersThrough) {
    const CTestHandle event = MakeEvent(false, false);
    const CTestHandle stop = MakeEvent(true, false);
    const CTestHandle taken = MakeEvent(false, false);
    std::atomic<int> count = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            const HANDLE handles[] = {stop, event};
            for (; WaitForMultipleObjects(2, handles, FALSE, INFINITE) == 1; SetEvent(taken))
                ++count;
        });
    for (int signal = 1; signal <= 2000; ++signal) {
        SetEvent(event);
        EXPECT_EQ(WaitForSingleObject(taken, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(count, signal);
    }
    SetEvent(stop);
    threads.clear();
    EXPECT_EQ(WaitForSingleObject(taken, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(IsShown(taken));
}

// What was written before a signal is seen after the wait that took it, also when the signal found
// the event signalled already.
TEST(Event, SignalsPublishWhatWasWrittenBefore) {
    constexpr int kLast = 20000;
    const CTestHandle event = MakeEvent(false, false);
    std::atomic<int> value = 0;
    const std::jthread writer([&] {
        for (int i = 1; i <= kLast; ++i) {
            value.store(i, std::memory_order_relaxed);
            SetEvent(event);
        }
    });
    while (value.load(std::memory_order_relaxed) != kLast)
        EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
}

// Resets against sets leave flag and descriptor in step: afterwards both states can be reached.
TEST(Event, SurvivesRacingSetsAndResets) {
    const CTestHandle event = MakeEvent(true, false);
    const auto toggle = [&] {
        for (int i = 0; i < 5000; ++i) {
            SetEvent(event);
            ResetEvent(event);
        }
    };
    std::jthread other(toggle);
    toggle();
    other.join();
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(IsShown(event));
    SetEvent(event);
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(IsShown(event));
}

TEST(Wait, TheLowestSignalledIndexWinsAndOnlyItIsConsumed) {
    std::array<CTestHandle, MAXIMUM_WAIT_OBJECTS> owners;
    HANDLE handles[MAXIMUM_WAIT_OBJECTS];
    for (std::size_t index = 0; index < owners.size(); ++index)
        handles[index] = owners[index] = MakeEvent(false, false);
    for (const DWORD count : {8U, 9U, 64U}) {
        for (const DWORD index : {count - 1, count / 2, 0U})
            SetEvent(handles[index]);
        for (const DWORD index : {0U, count / 2, count - 1, WAIT_TIMEOUT})
            EXPECT_EQ(WaitForMultipleObjects(count, handles, FALSE, 0), index);
    }
}
