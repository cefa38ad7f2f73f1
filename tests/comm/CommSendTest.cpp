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
        std::thread writer([&, port = m_port] {
            if (!GetOverlappedResult(port, &m_overlapped, &written, TRUE))
                error = GetLastError();
        });
        step();
        writer.join();
        return error;
    }
};

} // namespace

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
    const auto close = [&] {
        poll(nullptr, 0, 20);
        EXPECT_TRUE(CloseHandle(std::exchange(m_port, nullptr)));
    };
    const DWORD error = EndOfWriteAfter(close, written);
    EXPECT_TRUE(error == ERROR_OPERATION_ABORTED || error == ERROR_INVALID_HANDLE) << error;
    EXPECT_EQ(m_overlapped.Internal, ERROR_OPERATION_ABORTED);
    m_port = OpenPort(m_device.Path());
    EXPECT_NE(m_port, INVALID_HANDLE_VALUE);
}

TEST_F(CommSendTest, HangupEndsAPendingWrite) {
    StartSending();
    DWORD written = 0;
    EXPECT_EQ(EndOfWriteAfter([&] { m_device.Close(); }, written), ERROR_DEVICE_NOT_CONNECTED);
    EXPECT_LT(written, MUCH.size());
}
