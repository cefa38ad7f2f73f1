#include "tests/comm/TestPort.h"

#include <termios.h>

namespace {

termios SettingsOf(const CTestDevice& device) {
    termios settings{};
    EXPECT_EQ(tcgetattr(device.Get(), &settings), 0);
    return settings;
}

} // namespace

TEST(CommOpen, SettingsFoundComeBack) {
    CTestDevice device;
    termios found = SettingsOf(device);
    ASSERT_TRUE(found.c_lflag & ICANON);
    cfsetspeed(&found, B1200);
    ASSERT_EQ(tcsetattr(device.Get(), TCSANOW, &found), 0);

    const HANDLE port = OpenPort(device.Path());
    ASSERT_NE(port, INVALID_HANDLE_VALUE);
    const termios raw = SettingsOf(device);
    EXPECT_EQ(raw.c_lflag & (ICANON | ECHO | ISIG), 0u);
    EXPECT_EQ(raw.c_iflag, tcflag_t{IGNBRK});
    DCB dcb{};
    ASSERT_TRUE(GetCommState(port, &dcb));
    EXPECT_EQ(dcb.BaudRate, 1200u);
    EXPECT_EQ(dcb.ByteSize, 8);
    EXPECT_FALSE(dcb.fOutX || dcb.fInX || dcb.fOutxCtsFlow);
    dcb.BaudRate = 250000;
    EXPECT_TRUE(SetCommState(port, &dcb));

    EXPECT_TRUE(CloseHandle(port));
    const termios after = SettingsOf(device);
    EXPECT_EQ(after.c_iflag, found.c_iflag);
    EXPECT_EQ(after.c_oflag, found.c_oflag);
    EXPECT_EQ(after.c_cflag, found.c_cflag);
    EXPECT_EQ(after.c_lflag, found.c_lflag);
    EXPECT_EQ(cfgetospeed(&after), speed_t{B1200});
    EXPECT_EQ(std::memcmp(after.c_cc, found.c_cc, sizeof found.c_cc), 0);
    EXPECT_FALSE(ClearCommError(port, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(CommOpen, OnePortAtATime) {
    CTestDevice device;
    const HANDLE port = OpenPort(device.Path());
    ASSERT_NE(port, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenPort(device.Path()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    const std::string why = platform::ExplainPortOpenFailure(device.Path(), ERROR_ACCESS_DENIED);
    EXPECT_NE(why.find(": in use by process " + std::to_string(getpid()) + " ("), std::string::npos)
        << why;
    EXPECT_TRUE(CloseHandle(port));
    const HANDLE again = OpenPort(device.Path());
    EXPECT_NE(again, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(CloseHandle(again));
}

TEST_F(CommTest, SettingsAreSetOrLeftAsTheyWere) {
    DCB dcb{};
    ASSERT_TRUE(GetCommState(m_port, &dcb));
    dcb.BaudRate = 12345;
    dcb.ByteSize = 7; // a pseudo-terminal has no format, and takes every one
    dcb.Parity = EVENPARITY;
    dcb.fOutX = dcb.fInX = 1;
    dcb.fRtsControl = RTS_CONTROL_DISABLE;
    ASSERT_TRUE(SetCommState(m_port, &dcb));
    dcb.BaudRate = 0;
    EXPECT_FALSE(SetCommState(m_port, &dcb));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    DCB inPlace{};
    ASSERT_TRUE(GetCommState(m_port, &inPlace));
    EXPECT_EQ(inPlace.BaudRate, 12345u);
    EXPECT_TRUE(inPlace.fOutX && inPlace.fInX);
    EXPECT_EQ(inPlace.fRtsControl, RTS_CONTROL_DISABLE);
}

TEST_F(CommTest, MissingLinesAndCountersAreNoFailure) {
    for (int round = 0; round < 2; ++round) {
        for (DWORD function : {SETDTR, CLRDTR, SETRTS, CLRRTS})
            EXPECT_TRUE(EscapeCommFunction(m_port, function));
        DWORD lines = 1;
        EXPECT_TRUE(GetCommModemStatus(m_port, &lines));
        EXPECT_EQ(lines, 0u);
        DWORD errors = 1;
        COMSTAT status{};
        EXPECT_TRUE(ClearCommError(m_port, &errors, &status));
        EXPECT_EQ(errors + status.cbInQue + status.cbOutQue, 0u);
    }
    EXPECT_FALSE(EscapeCommFunction(m_port, 8));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(CommTest, QueueSizes) {
    COMMPROP properties{};
    EXPECT_FALSE(GetCommProperties(m_port, &properties));
    properties.wPacketLength = 64;
    ASSERT_TRUE(GetCommProperties(m_port, &properties));
    EXPECT_EQ(properties.dwCurrentRxQueue, 4096u);
    EXPECT_EQ(properties.dwCurrentTxQueue, 4096u);
    EXPECT_FALSE(SetupComm(m_port, 0, 1));
    EXPECT_FALSE(SetupComm(m_port, 16 * 1024 * 1024 + 1, 1));
    EXPECT_TRUE(SetupComm(m_port, 1, 10000));
    ASSERT_TRUE(GetCommProperties(m_port, &properties));
    EXPECT_EQ(properties.dwCurrentRxQueue, 1u);
    EXPECT_EQ(properties.dwCurrentTxQueue, 10000u);
    m_device.Say("abc");
    AwaitReceived(3);
    EXPECT_EQ(Read(10), "abc");
}

TEST_F(CommTest, OtherEndCloses) {
    const HANDLE hangup = platform::GetCommHangupHandle(m_port);
    ASSERT_NE(hangup, nullptr);
    EXPECT_EQ(platform::GetCommHangupHandle(m_port), hangup);
    m_device.Say("last words");
    AwaitReceived(10);
    EXPECT_TRUE(IsSignalled(m_port));
    EXPECT_FALSE(IsSignalled(hangup));

    m_device.Close();
    EXPECT_EQ(WaitForSingleObject(hangup, PATIENCE), WAIT_OBJECT_0);
    DWORD moved = 0;
    EXPECT_FALSE(WriteFile(m_port, "x", 1, &moved, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(CountReceived(), 10u);
    EXPECT_EQ(Read(4), "last");
    EXPECT_EQ(Read(100), " words");
    EXPECT_TRUE(IsSignalled(m_port));
    char byte = 0;
    EXPECT_FALSE(ReadFile(m_port, &byte, 1, &moved, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(ClearCommError(m_port, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_FALSE(PurgeComm(m_port, PURGE_TXABORT | PURGE_TXCLEAR));
    EXPECT_TRUE(IsSignalled(hangup));

    EXPECT_TRUE(CloseHandle(m_port));
    m_port = nullptr;
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_FAILED);
}

TEST_F(CommTest, HangupHandleMayBeClosedFirst) {
    const HANDLE hangup = platform::GetCommHangupHandle(m_port);
    EXPECT_TRUE(CloseHandle(hangup));
    const HANDLE another = platform::GetCommHangupHandle(m_port);
    EXPECT_NE(another, nullptr);
    EXPECT_FALSE(IsSignalled(another));
}
