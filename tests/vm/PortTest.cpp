// A port on a real driver: its lines, its settings, what is wrong with received bytes, and what a
// receiver of notifications is told.
#include "platform/Comm.h"
#include "platform/CommEvents.h"
#include "tests/platform/TestWindow.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/vm/DriverTest.h"
#include "tests/vm/Holder.h"

#include <array>
#include <atomic>
#include <regex>

// Devices into whose chips the host looks.
class CChipTest : public CDriverTest {
  protected:
    std::string Ask(const char* what) const {
        return AskHost(std::string(what) + ' ' + GetParam().name);
    }
    // Without the times between.
    std::string Moves() const {
        return std::regex_replace(Ask("moves"), std::regex("[0-9]+ms "), "");
    }
    // The chips divide their clocks, so no speed is exact.
    void ExpectInChip(DWORD speed, const std::string& rest) {
        const std::string settings = Ask("settings");
        EXPECT_NEAR(std::atof(settings.c_str()), speed, speed * 0.01);
        EXPECT_EQ(settings.substr(settings.find(' ') + 1), rest);
    }
};
INSTANTIATE_TEST_SUITE_P(Cables, CChipTest, testing::Values(kAdapter, kUart), NameOfCable);

TEST_P(CChipTest, LinesMoveAsTold) {
    const struct {
        DWORD line;
        BOOL state;
        const char* moves;
        DWORD status;
    } steps[] = {
        {LINE_RTS, TRUE, "", LINE_DTR | LINE_RTS},
        {LINE_DTR, FALSE, "-DTR", LINE_RTS},
        {LINE_RTS, FALSE, "-RTS", 0},
        {LINE_DTR, TRUE, "+DTR", LINE_DTR},
        {LINE_RTS, TRUE, "+RTS", LINE_DTR | LINE_RTS},
    };
    const auto status = [this] { return m_serial->GetLineStatus() & (LINE_DTR | LINE_RTS); };
    CHolder holder(GetParam().device);
    holder.SetLines(TIOCM_RTS);
    Moves();
    Open();
    EXPECT_TRUE(holder.IsExclusive());
    EXPECT_EQ(Moves(), "+DTR");
    EXPECT_EQ(status(), LINE_DTR);
    for (const auto& step : steps) {
        EXPECT_TRUE(m_serial->SetLine(step.line, step.state));
        EXPECT_EQ(Moves(), step.moves);
        EXPECT_EQ(status(), step.status);
        if (step.status != 0)
            continue;
        // Another format moves no line.
        EXPECT_TRUE(m_serial->SetDataFormat(4800, EVENPARITY, 7, ONESTOPBIT));
        EXPECT_EQ(Moves(), "");
    }
    // The far end's lines are up on both.
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_DTR | LINE_RTS | LINE_CTS | LINE_DSR | LINE_DCD);
    m_serial->Close();
    EXPECT_EQ(Moves(), "-DTR");
    EXPECT_FALSE(holder.IsExclusive());
}

TEST_P(CChipTest, FormatsAndFlowControlReachTheChip) {
    // The UART's driver does XON/XOFF itself.
    const char* const xonXoff = GetParam() == kAdapter ? "8N1 XON DTR RTS" : "8N1 - DTR RTS";
    const struct {
        std::array<DWORD, 4> format;
        DWORD flowControl;
        const char* inChip;
    } rows[] = {
        {{9600, ODDPARITY, 8, ONESTOPBIT}, _FLOW_NONE, "8O1 - DTR RTS"},
        {{19200, EVENPARITY, 7, ONESTOPBIT}, _FLOW_NONE, "7E1 - DTR RTS"},
        {{38400, NOPARITY, 8, TWOSTOPBITS}, _FLOW_NONE, "8N2 - DTR RTS"},
        {{57600, MARKPARITY, 8, ONESTOPBIT}, _FLOW_NONE, "8M1 - DTR RTS"},
        {{1200, SPACEPARITY, 7, ONESTOPBIT}, _FLOW_NONE, "7S1 - DTR RTS"},
        {{115200, NOPARITY, 8, ONESTOPBIT}, _FLOW_NONE, "8N1 - DTR RTS"},
        {{9600, NOPARITY, 8, ONESTOPBIT}, _FLOW_RTSCTS, "8N1 CTS DTR RTS"},
        {{9600, NOPARITY, 8, ONESTOPBIT}, _FLOW_XONXOFF, xonXoff},
        {{9600, NOPARITY, 8, ONESTOPBIT}, _FLOW_BOTH, "8N1 CTS DTR RTS"},
        {{9600, NOPARITY, 8, ONESTOPBIT}, _FLOW_NONE, "8N1 - DTR RTS"},
    };
    Open();
    for (const auto& [format, flowControl, inChip] : rows) {
        SCOPED_TRACE(inChip);
        EXPECT_TRUE(m_serial->SetDataFormat(format[0], format[1], format[2], format[3]));
        EXPECT_TRUE(m_serial->SetFlowControl(flowControl));
        ExpectInChip(format[0], inChip);
        std::array<DWORD, 4> told{};
        EXPECT_TRUE(m_serial->GetDataFormat(&told[0], &told[1], &told[2], &told[3]));
        EXPECT_EQ(told, format);
        Write("said");
        ExpectHeard("said");
        m_device.Say("heard");
        EXPECT_EQ(Read(5), "heard");
    }
}

// The drivers put another one in place without a word.
TEST_P(CChipTest, WhatTheDriverReplacesIsRefused) {
    const bool isAdapter = GetParam() == kAdapter;
    Open();
    EXPECT_TRUE(m_serial->SetDataFormat(19200, EVENPARITY, 7, ONESTOPBIT));
    EXPECT_FALSE(m_serial->SetDataFormat(isAdapter ? 4000000 : 230400, NOPARITY, 8, ONESTOPBIT));
    EXPECT_EQ(Reports(),
              Texts{"CVSerial::Reset() - SetCommState() failed - GetLastError() - 87\n"});
    ExpectInChip(19200, "7E1 - DTR RTS");
    if (isAdapter) {
        EXPECT_FALSE(m_serial->SetDataFormat(19200, NOPARITY, 6, ONESTOPBIT));
        ExpectInChip(19200, "7E1 - DTR RTS");
    }
}

TEST_P(CChipTest, SettingsFoundComeBack) {
    CHolder holder(GetParam().device);
    termios found = holder.GetSettings();
    cfmakeraw(&found);
    cfsetspeed(&found, B2400);
    found.c_cflag = (found.c_cflag & ~static_cast<tcflag_t>(CSIZE)) | CS7 | PARENB;
    holder.ApplySettings(found);
    found = holder.GetSettings();
    Open();
    ExpectInChip(2400, "7E1 - DTR RTS");
    DWORD speed = 0;
    EXPECT_TRUE(m_serial->GetDataFormat(&speed, nullptr, nullptr, nullptr));
    EXPECT_EQ(speed, 2400u);
    m_serial->SetDataFormat(115200, NOPARITY, 8, ONESTOPBIT);
    m_serial->Close();
    EXPECT_TRUE(holder.GetSettings() == found);
    ExpectInChip(2400, "7E1 - RTS");
}

class CUartTest : public CDriverTest {
  protected:
    // The receiver takes what has been received, on a thread of its own: the port is the thread's
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
        while ((m_nTold & wanted) == 0)
            Sleep(10);
        return m_nTold.exchange(0);
    }
    void OpenAndNotify() {
        Open();
        m_serial->SetCommNotifyWnd(m_receiver);
        m_serial->CommNotifyControl(_NOTIFY_ENABLE);
        // A byte, to know that the thread is at work.
        m_device.Say("x");
        EXPECT_EQ(ToldUntil(EV_RXCHAR), EV_RXCHAR);
    }

    std::atomic<DWORD> m_nTold = 0;
    const CWindowThread m_receiver{
        [this](HWND, UINT, WPARAM, LPARAM events) { return OnNotify(events); }};
};
INSTANTIATE_TEST_SUITE_P(Cables, CUartTest, testing::Values(kUart), NameOfCable);

// Looped back, the chip's outputs are its inputs; the second spare one is its carrier. An emulated
// chip does not raise an interrupt for that, so this is what a driver's interrupts do not tell.
TEST_P(CUartTest, EachLineIsSeenAndCarrierIsTold) {
    const struct {
        int output;
        DWORD input;
        bool isTold;
    } rows[] = {
        {TIOCM_RTS, LINE_CTS, true},
        {TIOCM_DTR, LINE_DSR, false},
        {TIOCM_OUT1, LINE_RING, false},
        {TIOCM_OUT2, LINE_DCD, true},
        {0, 0, true},
    };
    CHolder holder(GetParam().device);
    OpenAndNotify();
    for (const auto& row : rows) {
        holder.SetLines(TIOCM_LOOP | row.output);
        if (row.isTold) {
            EXPECT_EQ(ToldUntil(EV_RLSD) & EV_RLSD, EV_RLSD);
        }
        EXPECT_EQ(m_serial->GetLineStatus() & ~(LINE_DTR | LINE_RTS), row.input);
    }
    holder.SetLines(TIOCM_DTR | TIOCM_RTS | TIOCM_OUT2);
    EXPECT_EQ(ToldUntil(EV_RLSD) & EV_RLSD, EV_RLSD);
    EXPECT_TRUE(m_serial->Close());

    // Without carrier, and without CLOCAL, the port opens all the same.
    termios settings = holder.GetSettings();
    settings.c_cflag &= ~static_cast<tcflag_t>(CLOCAL);
    holder.ApplySettings(settings);
    holder.SetLines(TIOCM_LOOP);
    Open();
    holder.SetLines(TIOCM_DTR | TIOCM_RTS | TIOCM_OUT2);
}

TEST_P(CUartTest, ABreakIsReportedOnceAndAddsNoByte) {
    Open();
    m_device.Say("before");
    EXPECT_EQ(Read(6), "before");
    Reports();
    AskHost("break");
    m_device.Say("after");
    EXPECT_EQ(Read(5), "after");
    EXPECT_EQ(Reports(), Texts{"CVSerial::Read() - Comm error detected 0x000010\n"});
}

// A break adds no byte and moves no line.
TEST_P(CUartTest, ABreakIsTold) {
    OpenAndNotify();
    AskHost("break");
    EXPECT_EQ(ToldUntil(EV_ERR), EV_ERR);
    // The driver waits for its lines at the end of this.
    EXPECT_TRUE(m_serial->Close());
    for (const std::string& report : Reports())
        EXPECT_EQ(report.find("Forcibly"), std::string::npos) << report;
}

// On the adapter this is the chip's work.
TEST_P(CUartTest, XoffHoldsTheOutputBack) {
    Open();
    m_serial->SetDataFormat(9600, NOPARITY, 8, ONESTOPBIT);
    m_serial->SetFlowControl(_FLOW_XONXOFF);
    m_device.Say("before\x13");
    EXPECT_EQ(Read(6), "before");
    Sleep(300);
    Write("said");
    Sleep(300);
    EXPECT_EQ(m_device.Read(1), "");
    m_device.Say("\x11"
                 "after");
    EXPECT_EQ(Read(5), "after");
    ExpectHeard("said");
}

// With RTS/CTS flow control, and CTS low.
TEST_P(CUartTest, NothingIsLostAndClosingDoesNotWait) {
    CHolder holder(GetParam().device);
    Open();
    m_serial->SetDataFormat(115200, NOPARITY, 8, ONESTOPBIT);
    const std::string bytes(8000, 'w');
    const auto block = [&] {
        holder.LowerCts([this] { EXPECT_TRUE(m_serial->SetFlowControl(_FLOW_RTSCTS)); });
        Write(bytes);
        Sleep(500);
        EXPECT_NE(m_serial->GetLineStatus() & LINE_TXPENDING, 0u);
        m_device.Say("heard all the same");
        EXPECT_EQ(Read(18), "heard all the same");
        EXPECT_EQ(m_device.Read(1), "");
    };
    block();
    m_serial->SetFlowControl(_FLOW_NONE);
    ExpectHeard(bytes);

    block();
    EXPECT_TRUE(m_serial->Flush(_QUE_TX));
    m_serial->SetFlowControl(_FLOW_NONE);
    Write("after the flush");
    ExpectHeard("after the flush");

    block();
    ExpectClosing(1);
}
