#include "tests/comm/TestPort.h"

#include <thread>

namespace {

// More than a pseudo-terminal holds.
const std::string MUCH = MakePattern(300'000);

class CommSendTest : public CommTest {
  protected:
    // The device listens only when the test does.
    void StartSending() {
        DWORD written = 1;
        ASSERT_FALSE(WriteFile(m_port, MUCH.data(), static_cast<DWORD>(MUCH.size()), &written,
                               &m_overlapped));
        ASSERT_EQ(GetLastError(), ERROR_IO_PENDING);
        EXPECT_EQ(written, 0u);
        EXPECT_FALSE(IsSignalled(m_event));
    }
    // What a pending write comes to on another thread, while the given step is done on this one.
    template <class Step> DWORD EndOfWriteAfter(Step step, DWORD& written) {
        DWORD error = ERROR_SUCCESS;
        std::thread writer([&] {
            if (!GetOverlappedResult(m_port, &m_overlapped, &written, TRUE))
                error = GetLastError();
        });
        step();
        writer.join();
        return error;
    }
};

} // namespace

TEST_F(CommSendTest, SmallWriteIsDoneAtOnce) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(m_port, "ATZ\r", 4, &written, &m_overlapped));
    EXPECT_EQ(written, 4u);
    EXPECT_TRUE(IsSignalled(m_event));
    written = 0;
    EXPECT_TRUE(GetOverlappedResult(m_port, &m_overlapped, &written, FALSE));
    EXPECT_EQ(written, 4u);
    EXPECT_EQ(m_device.Hear(4), "ATZ\r");
}

TEST_F(CommSendTest, PendingWriteIsFinishedOnceTheDeviceListens) {
    StartSending();
    DWORD written = 0;
    EXPECT_FALSE(GetOverlappedResult(m_port, &m_overlapped, &written, FALSE));
    EXPECT_EQ(GetLastError(), ERROR_IO_INCOMPLETE);
    std::string heard;
    EXPECT_EQ(EndOfWriteAfter([&] { heard = m_device.Hear(MUCH.size()); }, written), ERROR_SUCCESS);
    EXPECT_EQ(written, MUCH.size());
    EXPECT_TRUE(heard == MUCH);
    EXPECT_TRUE(IsSignalled(m_event));
}

TEST_F(CommSendTest, BlockingWriteIsFinishedToo) {
    std::string heard;
    std::thread device([&] { heard = m_device.Hear(MUCH.size()); });
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(m_port, MUCH.data(), static_cast<DWORD>(MUCH.size()), &written, nullptr));
    device.join();
    EXPECT_EQ(written, MUCH.size());
    EXPECT_TRUE(heard == MUCH);
}

TEST_F(CommSendTest, PurgeEndsAPendingWrite) {
    for (int round = 0; round < 3; ++round) {
        StartSending();
        DWORD written = 0;
        const DWORD error = EndOfWriteAfter(
            [&] {
                if (round > 0) // once with the writer well inside its wait
                    poll(nullptr, 0, 20);
                EXPECT_TRUE(PurgeComm(m_port, PURGE_TXABORT | PURGE_TXCLEAR));
            },
            written);
        EXPECT_EQ(error, ERROR_OPERATION_ABORTED);
        EXPECT_LT(written, MUCH.size());
        EXPECT_TRUE(IsSignalled(m_event));
    }
}

TEST_F(CommSendTest, CloseEndsAPendingWrite) {
    StartSending();
    DWORD written = 0;
    const HANDLE port = std::exchange(m_port, nullptr);
    DWORD error = ERROR_SUCCESS;
    std::thread writer([&] {
        if (!GetOverlappedResult(port, &m_overlapped, &written, TRUE))
            error = GetLastError();
    });
    poll(nullptr, 0, 20);
    EXPECT_TRUE(CloseHandle(port));
    writer.join();
    EXPECT_TRUE(error == ERROR_OPERATION_ABORTED || error == ERROR_INVALID_HANDLE) << error;
    EXPECT_EQ(m_overlapped.Internal, ERROR_OPERATION_ABORTED);

    const HANDLE again = OpenPort(m_device.Path());
    EXPECT_NE(again, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(CloseHandle(again));
}

TEST_F(CommSendTest, HangupEndsAPendingWrite) {
    StartSending();
    DWORD written = 0;
    EXPECT_EQ(EndOfWriteAfter([&] { m_device.Close(); }, written), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_LT(written, MUCH.size());
}

TEST_F(CommSendTest, WriteTimeOutLeavesTheRest) {
    COMMTIMEOUTS limited{};
    limited.WriteTotalTimeoutConstant = 5;
    ASSERT_TRUE(SetCommTimeouts(m_port, &limited));
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(m_port, MUCH.data(), static_cast<DWORD>(MUCH.size()), &written, nullptr));
    EXPECT_GT(written, 0u);
    EXPECT_LT(written, MUCH.size());
    EXPECT_TRUE(m_device.Hear(written) == MUCH.substr(0, written));
}
