#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/objects/HandleObject.h"
#include "platform/objects/ThreadObject.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <vector>

namespace {

DWORD ExitCodeOf(HANDLE thread) {
    const auto object = platform::FindHandleOf<platform::CThreadObject>(thread);
    return object ? object->ExitCode() : 0;
}

} // namespace

// Closing at every moment of a thread's life, its very end included, must neither leak nor crash.
TEST(Thread, HandlesMayBeClosedAtAnyTime) {
    std::atomic<int> ran = 0;
    auto procedure = [&] { ++ran; };
    for (int i = 0; i < 200; ++i) {
        const CTestHandle thread = StartThread(procedure);
        if (i % 3 == 0)
            AwaitEnd(thread);
        else if (i % 3 == 1)
            sched_yield();
    }
    while (ran != 200)
        Sleep(1);
}

TEST(Thread, SignalsAreLeftToTheThreadsBefore) {
    sigset_t inside;
    auto look = [&] { pthread_sigmask(SIG_SETMASK, nullptr, &inside); };
    EXPECT_TRUE(AwaitEnd(StartThread(look)));
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH, SIGTSTP})
        EXPECT_EQ(sigismember(&inside, signal), 1);
    sigset_t outside;
    pthread_sigmask(SIG_SETMASK, nullptr, &outside);
    EXPECT_EQ(sigismember(&outside, SIGTERM), 0);
}

TEST(Thread, SuspendedThreadsBeginWhenResumed) {
    std::atomic<int> ran = 0;
    const auto run = [](LPVOID argument) -> DWORD {
        return static_cast<DWORD>(++*static_cast<std::atomic<int>*>(argument));
    };
    const CTestHandle thread(CreateThread(nullptr, 0, run, &ran, CREATE_SUSPENDED, nullptr));
    EXPECT_TRUE(SetThreadPriority(thread, THREAD_PRIORITY_LOWEST));
    EXPECT_EQ(WaitForSingleObject(thread, 20), WAIT_TIMEOUT);
    EXPECT_EQ(ran, 0);
    EXPECT_EQ(ResumeThread(thread), 1u);
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(ResumeThread(thread), 0u);
    const CTestHandle ended(CreateThread(nullptr, 0, run, &ran, CREATE_SUSPENDED, nullptr));
    EXPECT_TRUE(TerminateThread(ended, 33));
    EXPECT_TRUE(AwaitEnd(ended));
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(ExitCodeOf(ended), 33u);
    EXPECT_EQ(ResumeThread(nullptr), 0xFFFFFFFF);
}

// Each entry of the procedure is a way to wait; after the first has failed all others fail at once.
TEST(Thread, TerminateEndsABlockedThreadInAllItsWaits) {
    const CTestHandle never = MakeEvent(true, false);
    const CTestHandle always = MakeEvent(true, true);
    const CTestHandle begun = MakeEvent(false, false);
    std::vector<DWORD> results;
    auto wait = [&] {
        const auto note = [&](DWORD result) {
            results.push_back(result == WAIT_FAILED ? GetLastError() : result);
            SetLastError(ERROR_SUCCESS);
        };
        SetEvent(begun);
        note(WaitForSingleObject(never, INFINITE));
        note(WaitForSingleObject(always, INFINITE));
        note(WaitForSingleObject(never, 0));
        note(static_cast<DWORD>(platform::WaitForDescriptor(0, 0, INFINITE)));
        Sleep(INFINITE);
    };
    const CTestHandle thread = StartThread(wait);
    ASSERT_EQ(WaitForSingleObject(begun, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(thread, 5), WAIT_TIMEOUT);
    EXPECT_TRUE(TerminateThread(thread, 33));
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_TRUE(TerminateThread(thread, 9)) << "ended already";
    EXPECT_EQ(ExitCodeOf(thread), 33U);
    EXPECT_EQ(results, std::vector<DWORD>(4, ERROR_OPERATION_ABORTED));
    EXPECT_EQ(WaitForSingleObject(always, 0), WAIT_OBJECT_0) << "other threads wait on";
}
