// The settings of a port, as its driver shows them at the device's end.
#include "platform/Comm.h"
#include "platform/comm/CommSettings.h"
#include "tests/serial/SerialFixture.h"

#include <array>
#include <thread>

#include <sys/ioctl.h>

namespace {

constexpr DWORD KEEP = KEEP_SETTING;

class CSerialSettingsTest : public CSerialTest {
  protected:
    using Format = std::array<DWORD, 4>;
    Format CurrentFormat() {
        Format format = {};
        auto& [baudRate, parity, byteSize, stopBits] = format;
        EXPECT_TRUE(m_serial->GetDataFormat(&baudRate, &parity, &byteSize, &stopBits));
        return format;
    }
    // As the driver has them.
    termios2 Settings() const {
        termios2 settings = {};
        EXPECT_EQ(ioctl(m_device.Get(), TCGETS2, &settings), 0);
        return settings;
    }
};

TEST_F(CSerialSettingsTest, BelongToTheObjectAndAreAppliedAtEveryOpening) {
    Open();
    EXPECT_EQ(CurrentFormat()[0], 38400u);
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_DTR);
    EXPECT_TRUE(m_serial->SetLine(LINE_RTS, TRUE));
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_RTS | LINE_DTR);
    EXPECT_TRUE(m_serial->Close());

    EXPECT_TRUE(m_serial->SetDataFormat(115200, KEEP, KEEP, KEEP));
    EXPECT_EQ(CurrentFormat(), (Format{115200, NOPARITY, 8, ONESTOPBIT}));
    for (int i = 0; i < 2; ++i) {
        Open();
        EXPECT_EQ(CurrentFormat(), (Format{115200, NOPARITY, 8, ONESTOPBIT}));
        EXPECT_EQ(Settings().c_ospeed, 115200u);
        EXPECT_TRUE(m_serial->Close());
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialSettingsTest, FlowControlIsTheDrivers) {
    EXPECT_TRUE(m_serial->SetFlowControl(_FLOW_RTSCTS));
    Open();
    EXPECT_FALSE(Settings().c_cflag & CRTSCTS) << "applied without a baud rate";
    EXPECT_TRUE(m_serial->SetDataFormat(38400, KEEP, KEEP, KEEP));
    EXPECT_TRUE(Settings().c_cflag & CRTSCTS);
    for (const DWORD mode : {_FLOW_NONE, _FLOW_XONXOFF, _FLOW_BOTH, _FLOW_NONE}) {
        EXPECT_TRUE(m_serial->SetFlowControl(mode));
        EXPECT_EQ(m_serial->GetFlowControl(), mode);
        const bool isXonXoff = (mode & _FLOW_XONXOFF) != 0;
        EXPECT_EQ((Settings().c_cflag & CRTSCTS) != 0, (mode & _FLOW_RTSCTS) != 0) << mode;
        EXPECT_EQ(Settings().c_iflag & (IXON | IXOFF), isXonXoff ? IXON | IXOFF : 0u) << mode;
        EXPECT_EQ(Settings().c_cc[VSTART], 0x11); // no character was named
        EXPECT_EQ(Settings().c_cc[VSTOP], 0x13);
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialSettingsTest, WhatTheDriverRefusesIsReported) {
    Open();
    EXPECT_FALSE(m_serial->SetDataFormat(9600, 256, KEEP, KEEP));
    EXPECT_EQ(Reports(),
              Texts{"CVSerial::Reset() - SetCommState() failed - GetLastError() - 87\n"});
    EXPECT_TRUE(m_serial->SetDataFormat(9600, NOPARITY, KEEP, KEEP));

    EXPECT_FALSE(m_serial->SetBufferSizes(0, KEEP));
    EXPECT_EQ(Reports(), Texts{"CVSerial::Reset() - SetupComm() failed - GetLastError() = 87\n"});
    EXPECT_FALSE(m_serial->SetBufferSizes(4096, 0));
    EXPECT_EQ(Reports(),
              (Texts{Assert("m_cvTXBuffer.SetBufferSize(dwTXBufferSize) == dwTXBufferSize",
                            "Verify Failed!"),
                     "CVSerial::Reset() - SetupComm() failed - GetLastError() = 87\n"}));
}

TEST_F(CSerialSettingsTest, SizesAreKeptAndTheWriteThreadGoesOn) {
    std::thread([] {}).join(); // a sanitizer starts one of its own beside the first
    const Entries before = EntriesOf("/proc/self/task");
    Open();
    const Entries earlier = EntriesOf("/proc/self/task", before);
    EXPECT_EQ(earlier.size(), 1u);
    EXPECT_TRUE(m_serial->SetBufferSizes(1000, 2));
    AwaitEndOf(earlier);
    EXPECT_EQ(EntriesOf("/proc/self/task", before).size(), 1u);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXSIZE), 1000u);
        EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXSIZE), 2u);
        EXPECT_EQ(Write("tiny"), 4u);
        EXPECT_EQ(m_device.Hear(4), "tiny");
        EXPECT_TRUE(m_serial->Close());
        Open();
    }
}

} // namespace
