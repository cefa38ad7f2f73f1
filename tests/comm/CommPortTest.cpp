#include "tests/comm/TestPort.h"
#include "tests/support/PseudoTerminal.h"

#include <sys/ioctl.h>

TEST(CommOpen, SettingsFoundComeBack) {
    CPseudoTerminal line;
    termios found = line.GetSettings();
    ASSERT_TRUE(found.c_lflag & ICANON);
    cfsetspeed(&found, B1200);
    line.ApplySettings(found);
    found = line.GetSettings();

    const HANDLE port = OpenPort(line.GetPath().c_str());
    ASSERT_NE(port, INVALID_HANDLE_VALUE);
    const termios raw = line.GetSettings();
    EXPECT_EQ(raw.c_lflag & (ICANON | ECHO | ISIG), 0u);
    EXPECT_EQ(raw.c_iflag, tcflag_t{BRKINT});
    // It would outlive a program that is killed, for as long as the other end is open.
    int isExclusive = -1;
    EXPECT_EQ(ioctl(line.GetSlave(), TIOCGEXCL, &isExclusive), 0);
    EXPECT_EQ(isExclusive, 0);
    DCB dcb{};
    ASSERT_TRUE(GetCommState(port, &dcb));
    EXPECT_EQ(dcb.BaudRate, 1200u);
    dcb.BaudRate = 250000;
    EXPECT_TRUE(SetCommState(port, &dcb));
    EXPECT_TRUE(CloseHandle(port));
    EXPECT_TRUE(line.GetSettings() == found);
}

TEST(CommOpen, OnePortAtATime) {
    CTestDevice device;
    for (int round = 0; round < 2; ++round) {
        const HANDLE port = OpenPort(device.Path());
        ASSERT_NE(port, INVALID_HANDLE_VALUE);
        EXPECT_EQ(OpenPort(device.Path()), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        const std::string why =
            platform::ExplainPortOpenFailure(device.Path(), ERROR_ACCESS_DENIED);
        EXPECT_NE(why.find(": in use by process " + std::to_string(getpid()) + " ("),
                  std::string::npos)
            << why;
        EXPECT_TRUE(CloseHandle(port));
    }
}

TEST(CommOpen, OtherEndCloses) {
    CTestDevice device;
    const HANDLE port = OpenPort(device.Path());
    const HANDLE hangup = platform::GetCommHangupHandle(port);
    ASSERT_NE(hangup, nullptr);
    COMMTIMEOUTS atOnce{};
    atOnce.ReadIntervalTimeout = MAXDWORD;
    ASSERT_TRUE(SetCommTimeouts(port, &atOnce));
    device.Say("last words");
    COMSTAT status{};
    while (status.cbInQue < 10) {
        ASSERT_EQ(WaitForSingleObject(port, PATIENCE), WAIT_OBJECT_0);
        ASSERT_TRUE(ClearCommError(port, nullptr, &status));
    }
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_TIMEOUT);

    device.Close();
    EXPECT_EQ(WaitForSingleObject(hangup, PATIENCE), WAIT_OBJECT_0);
    OVERLAPPED overlapped{};
    DWORD moved = 0;
    EXPECT_FALSE(WriteFile(port, "x", 1, &moved, &overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    char bytes[100];
    for (const std::string expected : {"last", " words"}) {
        const DWORD most = expected == "last" ? 4 : sizeof(bytes);
        EXPECT_TRUE(ReadFile(port, bytes, most, &moved, &overlapped));
        EXPECT_EQ(std::string(bytes, moved), expected);
        EXPECT_EQ(WaitForSingleObject(port, 0), WAIT_OBJECT_0);
    }
    EXPECT_FALSE(ReadFile(port, bytes, 1, &moved, &overlapped));
    EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_FALSE(PurgeComm(port, PURGE_TXABORT | PURGE_TXCLEAR));
    EXPECT_TRUE(CloseHandle(port));
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_FAILED);
}

TEST(CommRead, WhatTheQueueHasNoRoomForIsCountedToo) {
    CTestDevice device;
    const HANDLE port = OpenPort(device.Path());
    ASSERT_TRUE(SetupComm(port, 10, 10));
    device.Say(std::string(30, 'x'));
    COMSTAT status{};
    while (status.cbInQue < 30)
        ASSERT_TRUE(ClearCommError(port, nullptr, &status));
    char bytes[4];
    DWORD taken = 0;
    EXPECT_TRUE(ReadFile(port, bytes, sizeof bytes, &taken, nullptr));
    EXPECT_TRUE(ClearCommError(port, nullptr, &status));
    EXPECT_EQ(status.cbInQue, 26u);
    EXPECT_TRUE(CloseHandle(port));
}

TEST(CommWrite, WhatIsPendingIsUnsent) {
    CTestDevice device;
    const HANDLE port = OpenPort(device.Path());
    const std::string bytes(1 << 20, 'w');
    const auto count = static_cast<DWORD>(bytes.size());
    OVERLAPPED overlapped{};
    DWORD handedOver = 0;
    ASSERT_FALSE(WriteFile(port, bytes.data(), count, &handedOver, &overlapped));
    ASSERT_EQ(GetLastError(), ERROR_IO_PENDING);
    COMSTAT status{};
    EXPECT_TRUE(ClearCommError(port, nullptr, &status));
    EXPECT_GT(status.cbOutQue, 0u);
    EXPECT_TRUE(PurgeComm(port, PURGE_TXABORT));
    EXPECT_FALSE(GetOverlappedResult(port, &overlapped, &handedOver, TRUE));
    EXPECT_EQ(handedOver + status.cbOutQue, count);
    EXPECT_TRUE(ClearCommError(port, nullptr, &status));
    EXPECT_EQ(status.cbOutQue, 0u);
    EXPECT_TRUE(CloseHandle(port));
}
