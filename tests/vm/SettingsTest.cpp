// Line settings: what is asked for is in the chip, or it is refused.
#include "tests/support/PseudoTerminal.h"
#include "tests/vm/Holder.h"
#include "tests/vm/SerialTest.h"

namespace {

struct Format {
    DWORD speed, parity, byteSize, stopBits;
    const char* inChip;
};

constexpr Format FORMATS[] = {
    {9600, ODDPARITY, 8, ONESTOPBIT, "8O1 - DTR RTS"},
    {19200, EVENPARITY, 7, ONESTOPBIT, "7E1 - DTR RTS"},
    {38400, NOPARITY, 8, TWOSTOPBITS, "8N2 - DTR RTS"},
    {57600, MARKPARITY, 8, ONESTOPBIT, "8M1 - DTR RTS"},
    {1200, SPACEPARITY, 7, ONESTOPBIT, "7S1 - DTR RTS"},
    {115200, NOPARITY, 8, ONESTOPBIT, "8N1 - DTR RTS"},
};

} // namespace

class CSettingsTest : public CSerialTest {
  protected:
    // The chips divide their clocks, so no speed is exact.
    void ExpectInChip(DWORD speed, const std::string& rest) {
        const std::string settings = Settings();
        const std::size_t space = settings.find(' ');
        EXPECT_NEAR(std::atof(settings.c_str()), speed, speed * 0.01);
        EXPECT_EQ(settings.substr(space + 1), rest);
    }
};
INSTANTIATE_TEST_SUITE_P(Cables, CSettingsTest, testing::Values(ADAPTER, UART), NameOfCable);

TEST_P(CSettingsTest, FormatsReachTheChip) {
    Open();
    for (const Format& row : FORMATS) {
        SCOPED_TRACE(row.inChip);
        EXPECT_TRUE(m_serial->SetDataFormat(row.speed, row.parity, row.byteSize, row.stopBits));
        ExpectInChip(row.speed, row.inChip);
        Format told{};
        EXPECT_TRUE(
            m_serial->GetDataFormat(&told.speed, &told.parity, &told.byteSize, &told.stopBits));
        EXPECT_TRUE(told.speed == row.speed && told.parity == row.parity &&
                    told.byteSize == row.byteSize && told.stopBits == row.stopBits);
        Write("said");
        EXPECT_TRUE(FarEndGets("said"));
        m_farEnd.Send("heard");
        EXPECT_EQ(Read(5), "heard");
    }
}

// The drivers put another one in place without a word.
TEST_P(CSettingsTest, WhatTheDriverReplacesIsRefused) {
    const DWORD speed = GetParam() == ADAPTER ? 4000000 : 230400;
    Open();
    EXPECT_TRUE(m_serial->SetDataFormat(19200, EVENPARITY, 7, ONESTOPBIT));
    EXPECT_FALSE(m_serial->SetDataFormat(speed, NOPARITY, 8, ONESTOPBIT));
    EXPECT_EQ(m_log.Take(), std::vector<std::string>{"CVSerial::Reset() - SetCommState() failed - "
                                                     "GetLastError() - 87\n"});
    ExpectInChip(19200, "7E1 - DTR RTS");
    if (GetParam() == ADAPTER) {
        EXPECT_FALSE(m_serial->SetDataFormat(19200, NOPARITY, 6, ONESTOPBIT));
        ExpectInChip(19200, "7E1 - DTR RTS");
    }
}

TEST_P(CSettingsTest, FlowControlReachesTheChip) {
    struct Row {
        DWORD flowControl;
        const char* inAdapter;
        const char* inUart;
    };
    Open();
    m_serial->SetDataFormat(9600, NOPARITY, 8, ONESTOPBIT);
    // The UART's driver does XON/XOFF itself.
    for (const Row& row : {Row{_FLOW_RTSCTS, "8N1 CTS DTR RTS", "8N1 CTS DTR RTS"},
                           Row{_FLOW_XONXOFF, "8N1 XON DTR RTS", "8N1 - DTR RTS"},
                           Row{_FLOW_BOTH, "8N1 CTS DTR RTS", "8N1 CTS DTR RTS"},
                           Row{_FLOW_NONE, "8N1 - DTR RTS", "8N1 - DTR RTS"}}) {
        SCOPED_TRACE(row.flowControl);
        EXPECT_TRUE(m_serial->SetFlowControl(row.flowControl));
        ExpectInChip(9600, GetParam() == ADAPTER ? row.inAdapter : row.inUart);
    }
}

class CXonXoffTest : public CSerialTest {};
INSTANTIATE_TEST_SUITE_P(Cables, CXonXoffTest, testing::Values(UART), NameOfCable);

// On the adapter this is the chip's work.
TEST_P(CXonXoffTest, XoffHoldsTheOutputBack) {
    Open();
    m_serial->SetDataFormat(9600, NOPARITY, 8, ONESTOPBIT);
    m_serial->SetFlowControl(_FLOW_XONXOFF);
    m_farEnd.Send("before\x13");
    EXPECT_EQ(Read(6), "before");
    m_pump.RunFor(std::chrono::milliseconds(300));
    Write("said");
    m_pump.RunFor(std::chrono::milliseconds(300));
    EXPECT_EQ(m_farEnd.GetReceived(), "");
    m_farEnd.Send("\x11"
                  "after");
    EXPECT_EQ(Read(5), "after");
    EXPECT_TRUE(FarEndGets("said"));
}

TEST_P(CSettingsTest, SettingsFoundComeBack) {
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
