// An open port's calls, on a pseudo-terminal.
#include "common/UniqueHandle.h"
#include "tests/comm/TestPort.h"
#include "tests/support/PseudoTerminal.h"

namespace {

class CCommPortTest : public testing::Test {
  protected:
    // Asks for the counts until that many bytes have come.
    void AwaitReceived(DWORD count) {
        COMSTAT status{};
        while (status.cbInQue < count)
            ASSERT_TRUE(ClearCommError(m_port, nullptr, &status));
    }
    std::string Read(std::size_t most) {
        std::string bytes(most, '\0');
        DWORD count = 0;
        EXPECT_TRUE(
            ReadFile(m_port, bytes.data(), static_cast<DWORD>(most), &count, &m_overlapped));
        return bytes.substr(0, count);
    }
    DWORD Unsent() {
        COMSTAT status{};
        EXPECT_TRUE(ClearCommError(m_port, nullptr, &status));
        return status.cbOutQue;
    }

    CPseudoTerminal m_device;
    CUniqueHandle m_port{OpenPort(m_device.GetPath())};
    OVERLAPPED m_overlapped{};
    DWORD m_dwMoved = 0;
};

TEST_F(CCommPortTest, SettingsFoundComeBack) {
    EXPECT_TRUE(CloseHandle(m_port));
    termios found = m_device.GetSettings();
    ASSERT_TRUE(found.c_lflag & ICANON);
    cfsetspeed(&found, B1200);
    m_device.ApplySettings(found);
    found = m_device.GetSettings();

    m_port.Reset(OpenPort(m_device.GetPath()));
    EXPECT_FALSE(m_device.GetSettings().c_lflag & ICANON);
    // It would outlive a program that is killed, for as long as the other end is open.
    int isExclusive = -1;
    EXPECT_EQ(ioctl(m_device.GetSlave(), TIOCGEXCL, &isExclusive), 0);
    EXPECT_EQ(isExclusive, 0);
    DCB dcb{};
    ASSERT_TRUE(GetCommState(m_port, &dcb));
    EXPECT_EQ(dcb.BaudRate, 1200u);
    dcb.BaudRate = 250000;
    EXPECT_TRUE(SetCommState(m_port, &dcb));
    EXPECT_TRUE(CloseHandle(m_port));
    EXPECT_TRUE(m_device.GetSettings() == found);
}

TEST_F(CCommPortTest, OtherEndCloses) {
    const HANDLE hangup = platform::GetCommHangupHandle(m_port);
    m_device.Say("last words");
    EXPECT_EQ(WaitForSingleObject(m_port, kPatience), WAIT_OBJECT_0);
    AwaitReceived(10);
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_TIMEOUT);

    m_device.CloseMaster();
    EXPECT_EQ(WaitForSingleObject(hangup, kPatience), WAIT_OBJECT_0);
    EXPECT_FALSE(WriteFile(m_port, "x", 1, &m_dwMoved, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    for (const std::string expected : {"last", " words"}) {
        EXPECT_EQ(Read(expected == "last" ? 4 : 100), expected);
        EXPECT_EQ(WaitForSingleObject(m_port, 0), WAIT_OBJECT_0);
    }
    char byte = 0;
    EXPECT_FALSE(ReadFile(m_port, &byte, 1, &m_dwMoved, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_FALSE(PurgeComm(m_port, PURGE_TXABORT | PURGE_TXCLEAR));
    EXPECT_TRUE(CloseHandle(m_port));
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_FAILED);
}

TEST_F(CCommPortTest, WhatTheQueueHasNoRoomForIsCountedToo) {
    ASSERT_TRUE(SetupComm(m_port, 10, 10));
    m_device.Say(std::string(30, 'x'));
    AwaitReceived(30);
    EXPECT_EQ(Read(4), "xxxx");
    COMSTAT status{};
    EXPECT_TRUE(ClearCommError(m_port, nullptr, &status));
    EXPECT_EQ(status.cbInQue, 26u);
}

TEST_F(CCommPortTest, WhatIsPendingIsUnsent) {
    const std::string bytes(1 << 20, 'w');
    const auto count = static_cast<DWORD>(bytes.size());
    ASSERT_FALSE(WriteFile(m_port, bytes.data(), count, &m_dwMoved, &m_overlapped));
    ASSERT_EQ(GetLastError(), ERROR_IO_PENDING);
    const DWORD left = Unsent();
    EXPECT_GT(left, 0u);
    EXPECT_TRUE(PurgeComm(m_port, PURGE_TXABORT));
    EXPECT_FALSE(GetOverlappedResult(m_port, &m_overlapped, &m_dwMoved, TRUE));
    EXPECT_EQ(m_dwMoved + left, count);
    EXPECT_EQ(Unsent(), 0u);
}

TEST_F(CCommPortTest, TimeoutsAreNotKept) {
    COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 0, 0};
    EXPECT_TRUE(SetCommTimeouts(m_port, &timeouts));
    timeouts.ReadTotalTimeoutConstant = 1;
    EXPECT_FALSE(SetCommTimeouts(m_port, &timeouts));
}

} // namespace
