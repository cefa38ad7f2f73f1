// A pseudo-terminal whose one end is opened as a port, while the test is the device at the other
// end.
#pragma once

#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/HandleObject.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <string>

constexpr DWORD PATIENCE = 60'000; // for what must come; no test waits that long unless it fails

class CTestDevice {
  public:
    CTestDevice() : m_device(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_TRUE(m_device);
        EXPECT_EQ(grantpt(m_device.Get()), 0);
        EXPECT_EQ(unlockpt(m_device.Get()), 0);
        char path[64] = {};
        EXPECT_EQ(ptsname_r(m_device.Get(), path, sizeof path), 0);
        m_path = path;
    }

    int Get() const { return m_device.Get(); }
    const char* Path() const { return m_path.c_str(); }
    void Close() { m_device.Reset(); }

    void Say(const std::string& text) const {
        for (std::size_t said = 0; said < text.size();) {
            const ssize_t count = write(Get(), text.data() + said, text.size() - said);
            ASSERT_GT(count, 0);
            said += static_cast<std::size_t>(count);
        }
    }

    std::string Hear(std::size_t count) const {
        std::string heard(count, '\0');
        std::size_t got = 0;
        while (got < count) {
            pollfd polled = {Get(), POLLIN, 0};
            if (poll(&polled, 1, static_cast<int>(PATIENCE)) != 1)
                break;
            const ssize_t part = read(Get(), heard.data() + got, count - got);
            if (part <= 0)
                break;
            got += static_cast<std::size_t>(part);
        }
        heard.resize(got);
        return heard;
    }

  private:
    platform::CDescriptor m_device;
    std::string m_path;
};

inline HANDLE OpenPort(const char* name) {
    return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
}

// Bytes that show where they belong.
inline std::string MakePattern(std::size_t count) {
    std::string pattern(count, '\0');
    unsigned value = 1;
    for (char& byte : pattern) {
        value = value * 1103515245 + 12345;
        byte = static_cast<char>(value >> 16);
    }
    return pattern;
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
