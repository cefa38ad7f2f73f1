#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/Message.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/ThreadObject.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <vector>

// Closing at every moment of a thread's life, its very end included, must neither leak nor crash.
TEST(Thread, HandlesMayBeClosedAtAnyTime) {
    std::atomic<int> ran = 0;
    auto procedure = [&] { ++ran; };
    for (int i = 0; i < 200; ++i) {
        const CTestHandle thread = StartThread(procedure);
        WaitForSingleObject(thread, i % 3 == 0 ? INFINITE : 0);
    }
    while (ran != 200)
        Sleep(1);
}

TEST(Thread, SignalsAreLeftToTheThreadsBefore) {
    sigset_t masks[2];
    auto look = [&] { pthread_sigmask(SIG_SETMASK, nullptr, &masks[1]); };
    EXPECT_TRUE(AwaitEnd(StartThread(look)));
    pthread_sigmask(SIG_SETMASK, nullptr, &masks[0]);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH, SIGTSTP})
        for (const int isInside : {0, 1})
            EXPECT_EQ(sigismember(&masks[isInside], signal), isInside);
}

TEST(Thread, SuspendedThreadsBeginWhenResumed) {
    std::atomic<int> ran = 0;
    auto procedure = [&] { ++ran; };
    const CTestHandle thread = StartThread(procedure, CREATE_SUSPENDED);
    const CTestHandle ended = StartThread(procedure, CREATE_SUSPENDED);
    EXPECT_TRUE(SetThreadPriority(thread, THREAD_PRIORITY_LOWEST));
    EXPECT_TRUE(TerminateThread(ended, 33));
    EXPECT_TRUE(AwaitEnd(ended));
    EXPECT_EQ(platform::FindHandleOf<platform::CThreadObject>(ended)->ExitCode(), 33u);
    EXPECT_EQ(WaitForSingleObject(thread, 20), WAIT_TIMEOUT);
    EXPECT_EQ(ran, 0);
    EXPECT_EQ(ResumeThread(thread), 1u);
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(ResumeThread(thread), 0u);
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
        note(MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT));
        Sleep(INFINITE);
    };
    const CTestHandle thread = StartThread(wait);
    ASSERT_EQ(WaitForSingleObject(begun, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(thread, 5), WAIT_TIMEOUT);
    EXPECT_TRUE(TerminateThread(thread, 33));
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_EQ(results, std::vector<DWORD>(5, ERROR_OPERATION_ABORTED));
    EXPECT_EQ(WaitForSingleObject(always, 0), WAIT_OBJECT_0) << "other threads wait on";
}
