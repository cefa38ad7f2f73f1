// A port whose device is gone.
#include "platform/Comm.h"
#include "platform/Error.h"
#include "tests/vm/DriverTest.h"

#include <functional>

using CGoneTest = CDriverTest;
INSTANTIATE_TEST_SUITE_P(Cables, CGoneTest, testing::Values(kAdapter, kAcm), NameOfCable);

TEST_P(CGoneTest, EveryCallSaysSoOnceAllIsRead) {
    Open();
    const HANDLE port = Port();
    const HANDLE hangup = platform::GetCommHangupHandle(port);
    COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 0, 0};
    DCB dcb{};
    ASSERT_TRUE(GetCommState(port, &dcb));
    m_device.Say("said before");
    for (COMSTAT status{}; status.cbInQue < 11; Sleep(10))
        ASSERT_TRUE(ClearCommError(port, nullptr, &status));
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_TIMEOUT);

    Unplug(GetParam());
    EXPECT_EQ(WaitForSingleObject(hangup, 60000), WAIT_OBJECT_0);
    char bytes[100] = "";
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(port, bytes, sizeof bytes, &count, nullptr));
    EXPECT_EQ(std::string(bytes, count), "said before");
    COMMPROP properties{};
    properties.wPacketLength = sizeof properties;
    const std::function<BOOL()> calls[] = {
        [&] { return ReadFile(port, bytes, 1, &count, nullptr); },
        [&] { return WriteFile(port, bytes, 1, &count, nullptr); },
        [&] { return ClearCommError(port, nullptr, nullptr); },
        [&] { return GetCommProperties(port, &properties); },
        [&] { return SetupComm(port, 100, 100); },
        [&] { return GetCommState(port, &dcb); },
        [&] { return SetCommState(port, &dcb); },
        [&] { return SetCommTimeouts(port, &timeouts); },
        [&] { return EscapeCommFunction(port, CLRDTR); },
        [&] { return GetCommModemStatus(port, &count); },
        [&] { return PurgeComm(port, PURGE_TXCLEAR | PURGE_RXCLEAR); },
    };
    for (const auto& call : calls) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(call()) << &call - calls;
        EXPECT_EQ(GetLastError(), ERROR_DEVICE_NOT_CONNECTED) << &call - calls;
    }
    // Neither writing nor closing waits.
    Write(std::string(200000, 'u'));
    ExpectClosing(0);
    EXPECT_FALSE(m_serial->Open(GetParam().device));
    Plug(GetParam());
    Open();
}
