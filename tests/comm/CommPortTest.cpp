// An open port's calls, on a pseudo-terminal.
#include "common/UniqueHandle.h"
#include "tests/comm/TestPort.h"
#include "tests/support/PseudoTerminal.h"

namespace {

class CCommPortTest : public testing::Test {
  protected:
    COMSTAT Status() const {
        COMSTAT status{};
        EXPECT_TRUE(ClearCommError(m_port, nullptr, &status));
        return status;
    }
    std::string Read(DWORD most) {
        std::string bytes(most, '\0');
        EXPECT_TRUE(ReadFile(m_port, bytes.data(), most, &m_dwMoved, &m_overlapped));
        return bytes.substr(0, m_dwMoved);
    }

    CPseudoTerminal m_device;
    CUniqueHandle m_port{OpenPort(m_device.GetPath())};
    OVERLAPPED m_overlapped{};
    DWORD m_dwMoved = 0;
};

TEST_F(CCommPortTest, OtherEndCloses) {
    const HANDLE hangup = platform::GetCommHangupHandle(m_port);
    m_device.Say("last words");
    EXPECT_EQ(WaitForSingleObject(m_port, kPatience), WAIT_OBJECT_0);
    while (Status().cbInQue < 10)
        continue;
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_TIMEOUT);

    m_device.CloseMaster();
    EXPECT_EQ(WaitForSingleObject(hangup, kPatience), WAIT_OBJECT_0);
    EXPECT_FALSE(WriteFile(m_port, "x", 1, &m_dwMoved, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(Read(4), "last");
    EXPECT_EQ(Read(100), " words");
    EXPECT_EQ(WaitForSingleObject(m_port, 0), WAIT_OBJECT_0);
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
    while (Status().cbInQue < 30)
        continue;
    EXPECT_EQ(Read(4), "xxxx");
    EXPECT_EQ(Status().cbInQue, 26u);
}

TEST_F(CCommPortTest, WhatIsPendingIsUnsent) {
    const std::string bytes(1 << 20, 'w');
    const auto count = static_cast<DWORD>(bytes.size());
    ASSERT_FALSE(WriteFile(m_port, bytes.data(), count, &m_dwMoved, &m_overlapped));
    ASSERT_EQ(GetLastError(), ERROR_IO_PENDING);
    const DWORD left = Status().cbOutQue;
    EXPECT_GT(left, 0u);
    EXPECT_TRUE(PurgeComm(m_port, PURGE_TXABORT));
    EXPECT_FALSE(GetOverlappedResult(m_port, &m_overlapped, &m_dwMoved, TRUE));
    EXPECT_EQ(m_dwMoved + left, count);
    EXPECT_EQ(Status().cbOutQue, 0u);
}

} // namespace
