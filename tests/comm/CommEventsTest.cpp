// Waits for comm events: what ends them, and what must not.
#include "platform/CommEvents.h"
#include "platform/Clock.h"
#include "platform/Thread.h"
#include "tests/comm/TestPort.h"
#include "tests/support/PseudoTerminal.h"

#include <thread>

namespace {

constexpr DWORD kAllEvents = EV_RXCHAR | EV_RLSD | EV_ERR;
constexpr DWORD kError = 0x80000000; // an error in place of events

class CCommEventsTest : public testing::TestWithParam<bool> {
  protected:
    ~CCommEventsTest() override { CloseHandle(m_port); }

    // Begins a wait, which must stay pending.
    void Begin() {
        EXPECT_FALSE(WaitCommEvent(m_port, &m_dwEvents, &m_overlapped));
        EXPECT_EQ(GetLastError(), ERROR_IO_PENDING);
    }
    // Carries the wait out while the other thread does something; returns the events, or the error.
    DWORD EndWhile(const std::function<void()>& action) {
        std::thread other([&] {
            Sleep(30);
            action();
        });
        DWORD unused = 0;
        const BOOL isDone = GetOverlappedResult(m_port, &m_overlapped, &unused, TRUE);
        const DWORD result = isDone ? m_dwEvents : kError | GetLastError();
        other.join();
        return result;
    }
    DWORD WaitWhile(const std::function<void()>& action) {
        Begin();
        return EndWhile(action);
    }

    CPseudoTerminal m_device;
    const HANDLE m_port = OpenPort(m_device.GetPath());
    const std::shared_ptr<CTestLines> m_lines = CTestLines::PutInto(m_port, GetParam());
    OVERLAPPED m_overlapped{};
    DWORD m_dwEvents = 0;
};
INSTANTIATE_TEST_SUITE_P(Drivers, CCommEventsTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "Telling" : "ToBeAsked"; });

TEST_P(CCommEventsTest, EachEventEndsTheWait) {
    const auto carrier = [this](bool isOn) { return [=, this] { m_lines->SetCarrier(isOn); }; };
    m_lines->SetCarrier(true);
    ++m_lines->m_nFrameErrors;
    ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
    EXPECT_EQ(WaitWhile(carrier(false)), EV_RLSD);
    EXPECT_EQ(WaitWhile(carrier(true)), EV_RLSD);
    EXPECT_EQ(WaitWhile([this] { ++m_lines->m_nFrameErrors; }), EV_ERR);
    EXPECT_EQ(WaitWhile([this] { m_device.Say("x"); }), EV_RXCHAR);

    // Bytes that wait are found at once, errors outlive the setting of the mask, and what is not
    // asked for is not reported.
    DWORD events = 0;
    ++m_lines->m_nFrameErrors;
    ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
    EXPECT_TRUE(WaitCommEvent(m_port, &events, nullptr));
    EXPECT_EQ(events, EV_RXCHAR | EV_ERR);
    ASSERT_TRUE(SetCommMask(m_port, EV_RLSD));
    EXPECT_EQ(WaitWhile(carrier(false)), EV_RLSD);
}

TEST_P(CCommEventsTest, TheMaskAndTheCloseEndTheWait) {
    for (int i = 0; i < 30; ++i) {
        ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
        EXPECT_EQ(WaitWhile([this] { SetCommMask(m_port, 0); }), 0u);
    }
    DWORD events = kAllEvents;
    EXPECT_TRUE(WaitCommEvent(m_port, &events, nullptr));
    EXPECT_EQ(events, 0u);

    ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
    Begin();
    EXPECT_FALSE(WaitCommEvent(m_port, &events, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(SetCommMask(m_port, 2));
    EXPECT_EQ(EndWhile([this] { EXPECT_TRUE(CloseHandle(m_port)); }),
              kError | ERROR_OPERATION_ABORTED);
    EXPECT_FALSE(SetCommMask(m_port, kAllEvents));
}

// Another thread that asks for the counts takes the bytes away from where the wait looks for them.
TEST_P(CCommEventsTest, BytesThatAreCountedAreNotMissed) {
    ASSERT_TRUE(SetCommMask(m_port, EV_RXCHAR));
    std::atomic<bool> isDone = false;
    std::thread counter([&] {
        COMSTAT status{};
        while (!isDone)
            ClearCommError(m_port, nullptr, &status);
    });
    for (int i = 0; i < 200; ++i) {
        std::thread device([this] { m_device.Say("x"); });
        DWORD events = EV_RXCHAR;
        if (i % 2 == 0)
            EXPECT_EQ(WaitForSingleObject(m_port, kPatience), WAIT_OBJECT_0);
        else
            EXPECT_TRUE(WaitCommEvent(m_port, &events, nullptr));
        EXPECT_EQ(events, EV_RXCHAR);
        device.join();
        EXPECT_TRUE(PurgeComm(m_port, PURGE_RXCLEAR));
    }
    isDone = true;
    counter.join();
}

TEST_P(CCommEventsTest, ADeviceThatGoesFailsOneWait) {
    ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
    EXPECT_EQ(WaitWhile([this] { m_device.CloseMaster(); }), kError | ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(WaitWhile([this] { SetCommMask(m_port, 0); }), 0u);
}

TEST_P(CCommEventsTest, NothingIsAskedWithoutNeed) {
    m_lines->m_bPresent = false;
    ASSERT_TRUE(SetCommMask(m_port, kAllEvents));
    Begin();
    const int asked = m_lines->m_nAsked;
    EXPECT_EQ(EndWhile([&] {
                  Sleep(400);
                  EXPECT_EQ(m_lines->m_nAsked, asked);
                  m_device.Say("x");
              }),
              EV_RXCHAR);
}

} // namespace
