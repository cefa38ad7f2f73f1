// What a receiver of notifications is told of lines and errors by a real driver.
#include "platform/CommEvents.h"
#include "tests/platform/TestWindow.h"
#include "tests/vm/Holder.h"
#include "tests/vm/SerialTest.h"

#include <atomic>

class CNotifyTest : public CSerialTest {
  protected:
    // The window takes what has been received, on a thread of its own: the port is the thread's
    // while the test only waits.
    LRESULT OnNotify(LPARAM events) {
        m_nTold |= static_cast<DWORD>(events);
        char some[256];
        while (m_serial->Read(some, sizeof some) != 0)
            continue;
        return 0;
    }
    // The events told until the wanted one was among them.
    DWORD ToldUntil(DWORD wanted) {
        m_pump.RunUntil([&] { return (m_nTold & wanted) != 0; }, GUARD);
        return m_nTold.exchange(0);
    }
    void Enable(HWND receiver) {
        m_serial->SetCommNotifyWnd(receiver);
        m_serial->CommNotifyControl(_NOTIFY_ENABLE);
        // A byte, to know that the thread is at work.
        m_farEnd.Send("x");
        EXPECT_EQ(ToldUntil(EV_RXCHAR), EV_RXCHAR);
    }

    std::atomic<DWORD> m_nTold = 0;
};
INSTANTIATE_TEST_SUITE_P(Cables, CNotifyTest, testing::Values(UART), NameOfCable);

// Looped back, the chip's second spare output is its carrier. An emulated chip does not raise an
// interrupt for that, so this is what a driver's interrupts do not tell.
TEST_P(CNotifyTest, CarrierIsTold) {
    CHolder holder(GetParam().device);
    Open();
    const CWindowThread receiver(
        [this](HWND, UINT, WPARAM, LPARAM events) { return OnNotify(events); });
    Enable(receiver);
    for (const int carrier : {0, TIOCM_OUT2, 0}) {
        holder.SetLines(TIOCM_LOOP | TIOCM_RTS | TIOCM_DTR | carrier);
        EXPECT_EQ(ToldUntil(EV_RLSD) & EV_RLSD, EV_RLSD);
        EXPECT_EQ(m_serial->GetLineStatus() & LINE_DCD, carrier != 0 ? LINE_DCD : 0);
    }
    holder.SetLines(TIOCM_DTR | TIOCM_RTS | TIOCM_OUT2);
    EXPECT_EQ(ToldUntil(EV_RLSD) & EV_RLSD, EV_RLSD);
    EXPECT_TRUE(m_serial->Close());
}

// A break adds no byte and moves no line.
TEST_P(CNotifyTest, ABreakIsTold) {
    Open();
    const CWindowThread receiver(
        [this](HWND, UINT, WPARAM, LPARAM events) { return OnNotify(events); });
    Enable(receiver);
    AskHost("break");
    EXPECT_EQ(ToldUntil(EV_ERR), EV_ERR);
    // The driver waits for its lines at the end of this.
    EXPECT_TRUE(m_serial->Close());
    for (const std::string& report : m_log.Take())
        EXPECT_EQ(report.find("Forcibly"), std::string::npos) << report;
}
