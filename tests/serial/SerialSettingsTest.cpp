// A port's opening, closing and settings, as its driver shows them at the device's end.
#include "tests/serial/SerialFixture.h"

#include <array>

namespace {

constexpr DWORD kKeep = KEEP_SETTING;

TEST_F(CSerialTest, ClosedPortRefusesEverything) {
    char bytes[4] = {};
    DWORD baudRate = 0;
    EXPECT_EQ(Write("AT"), 0u);
    EXPECT_EQ(m_serial->Read(bytes, sizeof(bytes)), 0u);
    EXPECT_FALSE(m_serial->Flush(_QUE_TX));
    EXPECT_FALSE(m_serial->SetLine(LINE_DTR, TRUE));
    EXPECT_EQ(m_serial->GetLineStatus(), 0u);
    EXPECT_FALSE(m_serial->GetDataFormat(&baudRate, nullptr, nullptr, nullptr));
    EXPECT_FALSE(m_serial->Open("/dev/wirelet-none"));
    EXPECT_EQ(Reports().size(), 7u);
    EXPECT_TRUE(m_serial->Close());
    EXPECT_EQ(m_wait->GetReceiveHandle(), nullptr);
    EXPECT_FALSE(m_wait->Drain(1000));
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialTest, ClosingLeavesNothingBehind) {
    const termios found = m_device.GetSettings();
    Entries descriptors;
    EXPECT_TRUE(m_serial->SetDataFormat(250000, kKeep, kKeep, kKeep));
    for (int i = 0; i < 5; ++i) {
        Open();
        m_device.Say("OK");
        EXPECT_EQ(Read(2), "OK");
        EXPECT_NE(m_wait->GetHangupHandle(), nullptr);
        // It would outlive a program that is killed, for as long as the other end is open.
        int isExclusive = -1;
        EXPECT_EQ(ioctl(m_device.GetSlave(), TIOCGEXCL, &isExclusive), 0);
        EXPECT_EQ(isExclusive, 0);
        EXPECT_EQ(Reports(), Texts{});
        EXPECT_FALSE(m_serial->Open(m_device.GetPath().c_str()));
        EXPECT_EQ(Reports(), Texts{"CVSerial::Open() - Close the current port first, Bozo\n"});
        EXPECT_EQ(Write("still open"), 10u);
        EXPECT_EQ(m_device.Hear(10), "still open");
        EXPECT_TRUE(m_serial->Close());
        EXPECT_EQ(m_wait->GetProgressEvent(), nullptr);
        EXPECT_TRUE(m_device.GetSettings() == found);
        AwaitThreads(0);
        // The first time makes what stays for the process.
        EXPECT_TRUE(i == 0 || EntriesOf("/proc/self/fd", descriptors).empty());
        descriptors = EntriesOf("/proc/self/fd");
    }
}

TEST_F(CSerialTest, SettingsBelongToTheObjectAndAreAppliedAtEveryOpening) {
    Open();
    std::array<DWORD, 4> format = {};
    auto& [baudRate, parity, byteSize, stopBits] = format;
    EXPECT_TRUE(m_serial->GetDataFormat(&baudRate, nullptr, nullptr, nullptr));
    EXPECT_EQ(baudRate, 38400u);
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_DTR);
    EXPECT_TRUE(m_serial->SetLine(LINE_RTS, TRUE));
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_RTS | LINE_DTR);
    EXPECT_TRUE(m_serial->Close());

    EXPECT_TRUE(m_serial->SetDataFormat(115200, kKeep, kKeep, kKeep));
    EXPECT_TRUE(m_serial->SetBufferSizes(1000, 2));
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(m_serial->GetDataFormat(&baudRate, &parity, &byteSize, &stopBits));
        EXPECT_EQ(format, (std::array<DWORD, 4>{115200, NOPARITY, 8, ONESTOPBIT}));
        Open();
        DCB dcb = {};
        EXPECT_TRUE(GetCommState(m_wait->GetReceiveHandle(), &dcb));
        EXPECT_EQ(dcb.BaudRate, 115200u);
        EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXSIZE), 1000u);
        EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXSIZE), 2u);
        EXPECT_EQ(Write("tiny"), 4u);
        EXPECT_EQ(m_device.Hear(4), "tiny");
        EXPECT_TRUE(m_serial->Close());
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialTest, FlowControlIsTheDrivers) {
    EXPECT_TRUE(m_serial->SetFlowControl(_FLOW_RTSCTS));
    Open();
    EXPECT_FALSE(m_device.GetSettings().c_cflag & CRTSCTS) << "applied without a baud rate";
    EXPECT_TRUE(m_serial->SetDataFormat(38400, kKeep, kKeep, kKeep));
    EXPECT_TRUE(m_device.GetSettings().c_cflag & CRTSCTS);
    for (const DWORD mode : {_FLOW_NONE, _FLOW_XONXOFF, _FLOW_BOTH, _FLOW_NONE}) {
        EXPECT_TRUE(m_serial->SetFlowControl(mode));
        EXPECT_EQ(m_serial->GetFlowControl(), mode);
        const tcflag_t xonXoff = (mode & _FLOW_XONXOFF) != 0 ? IXON | IXOFF : 0;
        const termios settings = m_device.GetSettings();
        EXPECT_EQ((settings.c_cflag & CRTSCTS) != 0, (mode & _FLOW_RTSCTS) != 0) << mode;
        EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), xonXoff) << mode;
        EXPECT_EQ(settings.c_cc[VSTART], 0x11); // no character was named
        EXPECT_EQ(settings.c_cc[VSTOP], 0x13);
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialTest, WhatTheDriverRefusesIsReported) {
    Open();
    EXPECT_FALSE(m_serial->SetDataFormat(9600, 256, kKeep, kKeep));
    EXPECT_EQ(Reports(),
              Texts{"CVSerial::Reset() - SetCommState() failed - GetLastError() - 87\n"});
    EXPECT_TRUE(m_serial->SetDataFormat(9600, NOPARITY, kKeep, kKeep));

    EXPECT_FALSE(m_serial->SetBufferSizes(0, kKeep));
    EXPECT_EQ(Reports(), Texts{"CVSerial::Reset() - SetupComm() failed - GetLastError() = 87\n"});
    EXPECT_FALSE(m_serial->SetBufferSizes(4096, 0));
    EXPECT_EQ(Reports().size(), 2u);
}

} // namespace
