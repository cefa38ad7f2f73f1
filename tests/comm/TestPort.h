// A pseudo-terminal whose one end is opened as a port, while the test is the device at the other
// end.
#pragma once

#include "platform/Comm.h"
#include "platform/Error.h"
#include "tests/comm/TestDevice.h"

#include <cstring>
#include <string>

inline HANDLE OpenPort(const char* name) {
    return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
}

class CommTest : public testing::Test {
  protected:
    void SetUp() override {
        m_port = OpenPort(m_device.Path());
        ASSERT_NE(m_port, INVALID_HANDLE_VALUE);
        COMMTIMEOUTS atOnce{};
        atOnce.ReadIntervalTimeout = MAXDWORD;
        ASSERT_TRUE(SetCommTimeouts(m_port, &atOnce));
        m_event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
        m_overlapped.hEvent = m_event;
    }
    void TearDown() override {
        EXPECT_TRUE(!m_port || CloseHandle(m_port));
        CloseHandle(m_event);
    }

    DWORD CountReceived() const {
        COMSTAT status{};
        return ClearCommError(m_port, nullptr, &status) ? status.cbInQue : 0;
    }
    // Bytes are on their way from one end to the other for a moment.
    void AwaitReceived(DWORD count) const {
        for (DWORD tries = 0; CountReceived() < count && tries < PATIENCE; ++tries)
            poll(nullptr, 0, 1);
        ASSERT_EQ(CountReceived(), count);
    }
    std::string Read(DWORD count) {
        std::string bytes(count, '\0');
        DWORD taken = 0;
        EXPECT_TRUE(ReadFile(m_port, bytes.data(), count, &taken, &m_overlapped)) << GetLastError();
        bytes.resize(taken);
        return bytes;
    }
    bool IsSignalled(HANDLE handle) const {
        return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
    }

    CTestDevice m_device;
    HANDLE m_port = nullptr;
    HANDLE m_event = nullptr;
    OVERLAPPED m_overlapped{};
};
