#include "platform/CommIntake.h"
#include "tests/comm/TestPort.h"

#include <algorithm>
#include <thread>

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
