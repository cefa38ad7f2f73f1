// What the receivers of a port's notifications are told, and when.
#include "platform/CommEvents.h"
#include "tests/platform/TestWindow.h"
#include "tests/serial/SerialFixture.h"

#include <ctime>

namespace {

constexpr DWORD kQuiet = 150; // for what must not come

class CNotifyTest : public CSerialTest {
  protected:
    using Told = std::vector<LPARAM>;

    void SetUp() override {
        Open();
        m_lines = CTestLines::PutInto(m_wait->GetReceiveHandle(), true);
    }
    void Control(DWORD code) { EXPECT_TRUE(m_serial->CommNotifyControl(code)); }
    // Returns when the thread waits for what the driver reports.
    void Enable() {
        m_serial->SetCommNotifyWnd(m_window);
        Control(_NOTIFY_ENABLE);
        AwaitThreads(3);
    }
    // Lets the window process its messages until it has been told that often since the last time.
    Told Next(std::size_t count) {
        PumpUntil([&] { return m_told.size() >= count; });
        return std::exchange(m_told, {});
    }
    // The same until nothing more comes.
    Told Rest() {
        while (WaitForMessage(kQuiet) == WAIT_OBJECT_0)
            if (MSG message; Retrieve(message))
                DispatchMessageA(&message);
        return std::exchange(m_told, {});
    }

    std::shared_ptr<CTestLines> m_lines;
    bool m_bReading = true; // the window takes what has been received
    Told m_told;
    CTestWindow m_window{[this](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        EXPECT_TRUE(message == WM_VXCOMMNOTIFY || message == WM_VXMODEMMONITOR);
        EXPECT_EQ(wParam, 0u);
        m_told.push_back(lParam);
        char bytes[100];
        while (m_bReading && m_serial->Read(bytes, sizeof bytes) != 0)
            continue;
        return 0;
    }};
};

// Beside the write thread; the watch for carrier is a thread too, which comes with the first wait.
TEST_F(CNotifyTest, ThreadsRunWhileTheyAreWanted) {
    EXPECT_EQ(m_serial->SetCommNotifyWnd(m_window), nullptr);
    AwaitThreads(1);
    Control(_NOTIFY_ENABLE);
    AwaitThreads(3);
    Control(_NOTIFY_DISABLE);
    AwaitThreads(1);
    Control(_NOTIFY_ENABLE);
    EXPECT_EQ(m_serial->SetModemMonitorWnd(m_window), nullptr);
    AwaitThreads(4);
    EXPECT_EQ(m_serial->SetModemMonitorWnd(nullptr), m_window);
    EXPECT_EQ(m_serial->SetCommNotifyWnd(nullptr), m_window);
    AwaitThreads(1);
    m_serial->SetModemMonitorWnd(m_window);
    m_serial->SetCommNotifyWnd(m_window);
    AwaitThreads(4);
    EXPECT_TRUE(m_serial->Close());
    AwaitThreads(0);
    Open(); // a pseudo-terminal's own lines, which are none
    AwaitThreads(3);
    const HANDLE port = m_serial->DetachHandle();
    AwaitThreads(0);
    EXPECT_TRUE(m_serial->AttachHandle(port, FALSE));
    AwaitThreads(3);
    m_device.Say("not overlapped");
    EXPECT_EQ(Next(1), Told{EV_RXCHAR});
    EXPECT_TRUE(m_serial->Close());
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CNotifyTest, OneAtATimeAndCarrierFirst) {
    Enable();
    m_bReading = false;
    m_device.Say("a");
    EXPECT_EQ(WaitForMessage(kPatience), WAIT_OBJECT_0);
    m_device.Say("b");
    m_lines->SetCarrier(true);
    Sleep(kQuiet);
    ++m_lines->m_nFrameErrors;
    EXPECT_EQ(Next(3), (Told{EV_RXCHAR, EV_RLSD, EV_RXCHAR}));
    m_bReading = true;
    EXPECT_EQ(Rest(), (Told{EV_RXCHAR, EV_ERR}));
}

TEST_F(CNotifyTest, SuspensionsAreCounted) {
    constexpr DWORD kUnknown = 5;
    Enable();
    for (const DWORD code : {_NOTIFY_RESUME, _NOTIFY_REARM, _NOTIFY_SUSPEND, _NOTIFY_SUSPEND})
        Control(code);
    m_lines->SetCarrier(true);
    m_device.Say("x");
    for (const DWORD code : {_NOTIFY_REARM, _NOTIFY_RESUME, kUnknown}) {
        Control(code);
        EXPECT_EQ(Rest(), Told{}) << code;
    }
    Control(_NOTIFY_RESUME);
    m_bReading = false; // what is found first leaves the other to be found
    EXPECT_EQ(Next(2), (Told{EV_RLSD, EV_RXCHAR}));
    m_bReading = true;
    Rest();

    // A notification that is processed during a suspension lets none follow.
    m_device.Say("x");
    EXPECT_EQ(WaitForMessage(kPatience), WAIT_OBJECT_0);
    Control(_NOTIFY_SUSPEND);
    EXPECT_EQ(Rest(), Told{EV_RXCHAR});
    m_device.Say("x");
    EXPECT_EQ(Rest(), Told{});
    Control(_NOTIFY_RESUME);
    EXPECT_EQ(Next(1), Told{EV_RXCHAR});
}

TEST_F(CNotifyTest, TheMonitorPostsEverySecond) {
    m_serial->SetModemMonitorWnd(m_window);
    EXPECT_EQ(Next(2), (Told{LINE_DTR, LINE_DTR}));
    m_lines->SetCarrier(true);
    EXPECT_EQ(Next(1), Told{LINE_DTR | LINE_DCD});
}

// A thread that misses its end would hold each of these up for half a minute.
TEST_F(CNotifyTest, ClosingAtAnyMomentEndsTheThreads) {
    const CWindowThread receiver;
    m_serial->SetCommNotifyWnd(receiver);
    for (int i = 0; i < 60; ++i) {
        m_lines = CTestLines::PutInto(m_wait->GetReceiveHandle(), true);
        m_serial->SetModemMonitorWnd(receiver);
        Control(_NOTIFY_ENABLE);
        m_device.Say("x");
        m_lines->SetCarrier(i % 2 == 0);
        usleep(static_cast<useconds_t>(i * 50));
        EXPECT_TRUE(m_serial->Close());
        Control(_NOTIFY_DISABLE);
        m_serial->SetModemMonitorWnd(nullptr);
        Open();
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CNotifyTest, AThreadThatIsGivenUpKeepsWhatItUses) {
    m_lines->Hold(true);
    m_serial->SetModemMonitorWnd(m_window);
    while (m_lines->m_nAsked == 0)
        Sleep(1);
    m_wait.Reset();
    m_serial.Reset();
    EXPECT_EQ(Reports(), Texts{"CVSerial::StopModemMonitorThread() - Forcibly terminating the "
                               "modem monitor thread\n"});
    m_lines->Hold(false);
    AwaitThreads(0);
}

TEST_F(CNotifyTest, AWindowThatGoesLeavesTheThreadAtRest) {
    {
        const CTestWindow former;
        m_serial->SetCommNotifyWnd(former);
        Control(_NOTIFY_ENABLE);
    }
    m_device.Say("x");
    Sleep(kQuiet);
    const Texts reports = Reports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_TRUE(reports[0].ends_with("WM_VXCOMMNOTIFY, 0, dwEvent, (SENDASYNCPROC)SendAsyncProc, "
                                     "(DWORD)this)\n"))
        << reports[0];
    m_serial->SetCommNotifyWnd(m_window);
    EXPECT_EQ(Rest(), Told{});
    Control(_NOTIFY_REARM);
    EXPECT_EQ(Next(1), Told{EV_RXCHAR});
}

TEST_F(CNotifyTest, ADeviceThatGoesTakesItsCarrierWithIt) {
    m_lines->SetCarrier(true);
    Enable();
    m_lines->m_bBroken = true;
    m_device.CloseMaster();
    EXPECT_EQ(Next(1), Told{EV_RLSD});
    EXPECT_EQ(Rest(), Told{});
    m_log.Take();
    const std::clock_t before = std::clock();
    Sleep(400);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 5);
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_TRUE(m_serial->Close());
}

} // namespace
