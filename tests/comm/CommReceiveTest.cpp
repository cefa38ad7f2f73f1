#include "platform/CommIntake.h"
#include "tests/comm/TestPort.h"

#include <algorithm>
#include <thread>

TEST(CommReceive, WhatWasSaidBeforeOpeningIsShown) {
    CTestDevice device;
    // The end that is to be the port must be there for something to be said to it.
    const platform::CDescriptor keeper(open(device.Path(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    device.Say("RING");
    const HANDLE port = OpenPort(device.Path());
    ASSERT_NE(port, INVALID_HANDLE_VALUE);
    ASSERT_EQ(WaitForSingleObject(port, PATIENCE), WAIT_OBJECT_0);
    char bytes[16] = {};
    DWORD taken = 0;
    EXPECT_TRUE(ReadFile(port, bytes, sizeof bytes, &taken, nullptr));
    EXPECT_EQ(std::string(bytes, taken), "RING");
    EXPECT_TRUE(CloseHandle(port));
}

TEST_F(CommTest, ReadsInPiecesLoseNothing) {
    const std::string sent = MakePattern(1'000'000);
    std::thread device([&] { m_device.Say(sent); });
    std::string received;
    while (received.size() < sent.size()) {
        ASSERT_EQ(WaitForSingleObject(m_port, PATIENCE), WAIT_OBJECT_0);
        const DWORD count = std::min(CountReceived(), DWORD{256});
        ASSERT_GT(count, 0u);
        const std::string piece = Read(count);
        ASSERT_EQ(piece.size(), count);
        received += piece;
    }
    device.join();
    EXPECT_TRUE(received == sent);
    EXPECT_EQ(Read(256), "");
    EXPECT_FALSE(IsSignalled(m_port));
}

TEST_F(CommTest, CountGrowsWhileNothingIsRead) {
    m_device.Say(std::string(100, 'a'));
    AwaitReceived(100);
    m_device.Say(std::string(50, 'b'));
    AwaitReceived(150);
    EXPECT_EQ(Read(150), std::string(100, 'a') + std::string(50, 'b'));
}

TEST_F(CommTest, PurgeDiscardsWhatWasReceived) {
    m_device.Say("old");
    AwaitReceived(3);
    EXPECT_TRUE(PurgeComm(m_port, PURGE_RXABORT | PURGE_RXCLEAR));
    EXPECT_FALSE(IsSignalled(m_port));
    m_device.Say("new");
    AwaitReceived(3);
    EXPECT_EQ(Read(10), "new");
}

TEST_F(CommTest, PendingReadEndsWithTheFirstBytes) {
    COMMTIMEOUTS patient{};
    ASSERT_TRUE(SetCommTimeouts(m_port, &patient));
    char bytes[16] = {};
    DWORD taken = 0;
    ASSERT_FALSE(ReadFile(m_port, bytes, sizeof bytes, &taken, &m_overlapped));
    ASSERT_EQ(GetLastError(), ERROR_IO_PENDING);
    EXPECT_FALSE(IsSignalled(m_event));
    EXPECT_FALSE(GetOverlappedResult(m_port, &m_overlapped, &taken, FALSE));
    EXPECT_EQ(GetLastError(), ERROR_IO_INCOMPLETE);
    std::thread device([&] { m_device.Say("OK"); });
    EXPECT_TRUE(GetOverlappedResult(m_port, &m_overlapped, &taken, TRUE));
    device.join();
    EXPECT_EQ(bytes[0], 'O');
    EXPECT_TRUE(IsSignalled(m_event));
}

TEST_F(CommTest, WaitingReadGivesUpInTime) {
    COMMTIMEOUTS limited{};
    limited.ReadTotalTimeoutConstant = 5;
    ASSERT_TRUE(SetCommTimeouts(m_port, &limited));
    char byte = 0;
    DWORD taken = 1;
    EXPECT_TRUE(ReadFile(m_port, &byte, 1, &taken, nullptr));
    EXPECT_EQ(taken, 0u);
    EXPECT_FALSE(ReadFile(m_port, &byte, 1, &taken, &m_overlapped));
    EXPECT_EQ(GetLastError(), ERROR_IO_PENDING);
    EXPECT_TRUE(PurgeComm(m_port, PURGE_RXABORT));
    EXPECT_FALSE(GetOverlappedResult(m_port, &m_overlapped, &taken, TRUE));
    EXPECT_EQ(GetLastError(), ERROR_OPERATION_ABORTED);
}

// More than all buffers on the way hold: the device comes to its end only if the port takes it in.
TEST_F(CommTest, IntakeGoesOnWhileWaiting) {
    const std::string sent = MakePattern(1'000'000);
    const HANDLE done = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    std::thread device([&] {
        m_device.Say(sent);
        SetEvent(done);
    });
    BOOL isDiscarded = FALSE;
    EXPECT_EQ(platform::WaitWhileReceiving(done, m_port, &isDiscarded), WAIT_OBJECT_0);
    device.join();
    EXPECT_TRUE(isDiscarded);
    EXPECT_TRUE(Read(4096) == sent.substr(0, 4096));

    PurgeComm(m_port, PURGE_RXCLEAR);
    m_device.Close();
    SetEvent(done);
    EXPECT_EQ(platform::WaitWhileReceiving(done, m_port, &isDiscarded), WAIT_OBJECT_0);
    EXPECT_FALSE(isDiscarded);
    CloseHandle(done);
}
