#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/HandleObject.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include <array>
#include <csignal>
#include <vector>

using platform::CDescriptor;

namespace {

// Shows nothing on its descriptor and becomes ready by itself after a time.
class CRipeningObject final : public platform::CHandleObject {
  public:
    explicit CRipeningObject(DWORD milliseconds) : m_dwRipe(GetTickCount() + milliseconds) {}
    int WaitDescriptor() const override { return m_silent.Get(); }
    bool IsReady() const override { return ReadyInMilliseconds() == 0; }
    int ReadyInMilliseconds() const override {
        const auto left = static_cast<std::int32_t>(m_dwRipe - GetTickCount());
        return left > 0 ? left : 0;
    }
    bool TryAcquire(short) override { return IsReady(); }

  private:
    const DWORD m_dwRipe;
    CDescriptor m_silent{eventfd(0, EFD_CLOEXEC)};
};

} // namespace

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

TEST(Wait, WrongArgumentsFailAndConsumeNothing) {
    const CTestHandle event = MakeEvent(false, true);
    const std::vector<HANDLE> many(MAXIMUM_WAIT_OBJECTS + 1, event);
    const HANDLE withBadOne[] = {event, nullptr};
    EXPECT_EQ(WaitForMultipleObjects(2, withBadOne, FALSE, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    const struct {
        DWORD count;
        const HANDLE* handles;
        BOOL all;
    } refused[] = {{0, many.data(), FALSE},
                   {MAXIMUM_WAIT_OBJECTS + 1, many.data(), FALSE},
                   {1, many.data(), TRUE},
                   {1, nullptr, FALSE}};
    for (const auto& call : refused) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(WaitForMultipleObjects(call.count, call.handles, call.all, 0), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

// Never early: the deadline is a lower bound.
TEST(Wait, DeadlinesAreKept) {
    const CTestHandle event = MakeEvent(false, false);
    for (const DWORD milliseconds : {0U, 1U, 7U, 20U}) {
        const DWORD begin = GetTickCount();
        EXPECT_EQ(WaitForSingleObject(event, milliseconds), WAIT_TIMEOUT);
        EXPECT_GE(GetTickCount() - begin + 1, milliseconds);
        Sleep(milliseconds);
        EXPECT_GE(GetTickCount() - begin + 1, 2 * milliseconds);
    }
}

TEST(Wait, AnObjectThatRipensByItselfEndsAWaitWithoutLimit) {
    const CTestHandle silent = MakeEvent(false, false);
    const CTestHandle ripening(
        platform::RegisterHandle(std::make_shared<CRipeningObject>(DWORD{15})));
    const HANDLE handles[] = {silent, ripening};
    EXPECT_EQ(WaitForMultipleObjects(2, handles, FALSE, 1), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForMultipleObjects(2, handles, FALSE, INFINITE), WAIT_OBJECT_0 + 1);
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

TEST(Wait, ForDescriptorsReportsBoth) {
    const CDescriptor first(eventfd(0, EFD_CLOEXEC));
    const CDescriptor second(eventfd(0, EFD_CLOEXEC));
    EXPECT_EQ(platform::WaitForDescriptor(first.Get(), POLLIN, 0), 0);
    EXPECT_EQ(platform::WaitForDescriptor(first.Get(), POLLIN, 2, second.Get()), 0);
    EXPECT_EQ(platform::WaitForDescriptor(first.Get(), POLLIN | POLLOUT, INFINITE), POLLOUT);
    eventfd_write(second.Get(), 1);
    EXPECT_EQ(platform::WaitForDescriptor(first.Get(), POLLIN, INFINITE, second.Get()), POLLPRI);
    eventfd_write(first.Get(), 1);
    EXPECT_EQ(platform::WaitForDescriptor(first.Get(), POLLIN, INFINITE, second.Get()),
              POLLIN | POLLPRI);
}
