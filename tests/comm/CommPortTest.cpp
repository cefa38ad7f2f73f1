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

TEST_F(CommTest, OtherEndCloses) {
    const HANDLE hangup = platform::GetCommHangupHandle(m_port);
    ASSERT_NE(hangup, nullptr);
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
    EXPECT_FALSE(PurgeComm(m_port, PURGE_TXABORT | PURGE_TXCLEAR));
    EXPECT_TRUE(IsSignalled(hangup));

    EXPECT_TRUE(CloseHandle(m_port));
    m_port = nullptr;
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_FAILED);
}
