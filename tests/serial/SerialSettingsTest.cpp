// The settings of a port, as its driver shows them at the device's end.
#include "platform/Comm.h"
#include "tests/serial/SerialFixture.h"

#include <filesystem>
#include <set>

namespace {

constexpr DWORD KEEP = KEEP_SETTING;

std::set<std::string> Threads() {
    std::set<std::string> threads;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        threads.insert(entry.path().filename());
    return threads;
}

class CSerialSettingsTest : public CSerialTest {
  protected:
    struct SFormat {
        DWORD baudRate, parity, byteSize, stopBits;
        friend bool operator==(const SFormat&, const SFormat&) = default;
    };
    SFormat Format() {
        SFormat format = {};
        EXPECT_TRUE(m_serial->GetDataFormat(&format.baudRate, &format.parity, &format.byteSize,
                                            &format.stopBits));
        return format;
    }
};

TEST_F(CSerialSettingsTest, BelongToTheObjectAndAreAppliedAtEveryOpening) {
    Open();
    const DWORD found = Format().baudRate;
    EXPECT_EQ(m_pty.Speed(), 38400u);
    EXPECT_EQ(found, 38400u);
    EXPECT_TRUE(m_serial->Close());

    EXPECT_TRUE(m_serial->SetDataFormat(115200, KEEP, KEEP, KEEP));
    EXPECT_EQ(Format(), (SFormat{115200, NOPARITY, 8, ONESTOPBIT}));
    for (int i = 0; i < 2; ++i) {
        Open();
        EXPECT_EQ(Format(), (SFormat{115200, NOPARITY, 8, ONESTOPBIT}));
        EXPECT_EQ(m_pty.Speed(), 115200u);
        EXPECT_TRUE(m_serial->Close());
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialSettingsTest, FlowControlIsComparedWithTheDrivers) {
    EXPECT_TRUE(m_serial->SetFlowControl(_FLOW_RTSCTS));
    Open();
    EXPECT_FALSE(m_pty.HasHandshake()) << "applied without a baud rate";
    EXPECT_TRUE(m_serial->SetDataFormat(38400, KEEP, KEEP, KEEP));
    EXPECT_TRUE(m_pty.HasHandshake());
    for (const DWORD mode : {_FLOW_NONE, _FLOW_XONXOFF, _FLOW_BOTH, _FLOW_NONE}) {
        EXPECT_TRUE(m_serial->SetFlowControl(mode));
        EXPECT_EQ(m_serial->GetFlowControl(), mode);
        EXPECT_EQ(m_pty.HasHandshake(), (mode & _FLOW_RTSCTS) != 0) << mode;
        EXPECT_EQ(m_pty.XonXoffDirections(), (mode & _FLOW_XONXOFF) != 0 ? 2 : 0) << mode;
    }
    EXPECT_EQ(Reports(), Texts{});

    EXPECT_TRUE(m_serial->SetFlowControl(7));
    EXPECT_EQ(Reports(), Texts{Assert("FALSE")});
    EXPECT_FALSE(m_pty.HasHandshake());
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
              (Texts{Verify("m_cvTXBuffer.SetBufferSize(dwTXBufferSize) == dwTXBufferSize"),
                     "CVSerial::Reset() - SetupComm() failed - GetLastError() = 87\n"}));
    EXPECT_TRUE(m_serial->Close());
    EXPECT_EQ(Reports(), Texts{});
    EXPECT_FALSE(m_serial->Open("/dev/null"));
}

TEST_F(CSerialSettingsTest, SizesRestartTheWriteThreadOnlyWhenTheyChange) {
    Open();
    const std::set<std::string> threads = Threads();
    const HANDLE progress = m_wait->GetProgressEvent();
    EXPECT_TRUE(m_serial->SetBufferSizes(KEEP, 4096));
    EXPECT_EQ(Threads(), threads);
    EXPECT_TRUE(m_serial->SetBufferSizes(1000, 8192));
    EXPECT_NE(Threads(), threads);
    EXPECT_EQ(SettledEntriesOf("/proc/self/task", threads.size()), threads.size());
    EXPECT_EQ(m_wait->GetProgressEvent(), progress);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXSIZE), 1000u);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXSIZE), 8192u);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXFREE), 8192u);
    EXPECT_EQ(m_serial->GetQueueInfo(6), 0u);
    EXPECT_EQ(Reports(), Texts{Assert("FALSE")});

    EXPECT_TRUE(m_serial->SetBufferSizes(KEEP, 2));
    EXPECT_EQ(Write("tiny"), 4u);
    EXPECT_EQ(m_pty.Receive(4), "tiny");
    EXPECT_TRUE(m_serial->Close());
    Open();
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXSIZE), 2u);
    EXPECT_EQ(Write("tiny"), 4u);
    EXPECT_EQ(m_pty.Receive(4), "tiny");
}

TEST_F(CSerialSettingsTest, LinesAreShownAsLastSet) {
    Open();
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_DTR);
    EXPECT_TRUE(m_serial->SetLine(LINE_RTS, TRUE));
    EXPECT_TRUE(m_serial->SetLine(LINE_DTR, FALSE));
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_RTS);
    EXPECT_FALSE(m_serial->SetLine(LINE_CTS, TRUE));
    EXPECT_EQ(Reports(), Texts{Assert("FALSE")});
    m_pty.Send("x");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_RTS | LINE_RXREADY);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXCOUNT), 1u);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXFREE), 4095u);
    EXPECT_TRUE(m_serial->Close());
    Open();
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_RTS | LINE_DTR);
}

} // namespace
