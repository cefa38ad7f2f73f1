// Bytes through an open port, to and from a device that reads, holds back, echoes or goes away.
#include "tests/serial/SerialFixture.h"

#include <algorithm>
#include <atomic>
#include <set>
#include <thread>

namespace {

constexpr const char* GONE_WRITE =
    "CVSerial::WriteThreadProc() - WriteFile() failed - GetLastError() = 1167\n";
constexpr const char* GONE_COMPLETION =
    "CVSerial::WriteThreadProc() - GetOverlappedResult() failed - GetLastError() = 1167\n";
constexpr const char* ABORTED_COMPLETION =
    "CVSerial::WriteThreadProc() - GetOverlappedResult() failed - GetLastError() = 995\n";

TEST_F(CSerialTest, ReadTakesWhatIsThere) {
    Open();
    char bytes[100] = {};
    EXPECT_EQ(m_serial->Read(bytes, sizeof(bytes)), 0u);
    m_pty.Send("abcde");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->Read(bytes, 2), 2u);
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->Read(bytes + 2, sizeof(bytes) - 2), 3u);
    EXPECT_STREQ(bytes, "abcde");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 0), WAIT_TIMEOUT);
    EXPECT_EQ(m_serial->Read(bytes, 0), 0u);
    EXPECT_EQ(m_serial->Write(bytes, 0), 0u);
    EXPECT_EQ(Reports(), Texts{});

    m_pty.Send("f");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->Read(nullptr, 1), 0u);
    EXPECT_EQ(m_serial->Write(nullptr, 1), 0u);
    EXPECT_EQ(Reports(),
              (Texts{Assert("pBuffer"), Assert("pBuffer"), Assert("dwWritten == dwCount")}));
    EXPECT_EQ(ReadSome(10), "f");
}

TEST_F(CSerialTest, MoreThanTheBufferHoldsArrivesInOrder) {
    Open();
    const std::string bytes = Pattern(10000);
    std::string received;
    std::thread device([&] { received = m_pty.Receive(bytes.size()); });
    EXPECT_EQ(Write(bytes), bytes.size());
    EXPECT_TRUE(m_wait->Drain(20000));
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXCOUNT), 0u);
    device.join();
    EXPECT_TRUE(received == bytes);
    EXPECT_EQ(Reports(), Texts{});
}

// The write thread makes room in the buffer by whole chunks, a quarter of the capacity each.
TEST_F(CSerialTest, ChunksAreAQuarterOfTheBuffer) {
    for (const DWORD size : {4096u, 10000u}) {
        Open();
        ASSERT_TRUE(m_serial->SetBufferSizes(KEEP_SETTING, size));
        const std::string written = Block();
        EXPECT_EQ(m_serial->GetQueueInfo(_QUE_TXCOUNT), size);
        EXPECT_NE(m_serial->GetLineStatus() & LINE_TXPENDING, 0u);
        std::string received;
        std::set<DWORD> seen;
        while (received.size() < written.size()) {
            received += m_pty.ReceiveSome(256);
            seen.insert(Free());
        }
        for (const DWORD free : seen)
            EXPECT_EQ(free % (size / 4), 0u) << free;
        EXPECT_TRUE(received == written);
        EXPECT_TRUE(m_serial->Close());
    }
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(CSerialTest, FlushDiscardsWhatWaits) {
    Open();
    Block();
    EXPECT_FALSE(m_wait->Drain(50));
    EXPECT_TRUE(m_serial->Flush(_QUE_TX));
    EXPECT_EQ(Free(), 4096u);
    EXPECT_TRUE(m_wait->Drain(20000));
    EXPECT_EQ(Reports(), Texts{ABORTED_COMPLETION});

    // What the device has already is its own; then comes what was written after the flush.
    const std::string mark = "after the flush";
    EXPECT_EQ(Write(mark), mark.size());
    std::string received;
    while (received.find(mark) == std::string::npos)
        received += m_pty.ReceiveSome(4096);
    EXPECT_EQ(received.find(mark), received.size() - mark.size());

    m_pty.Send("old");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXCOUNT), 3u);
    EXPECT_TRUE(m_serial->Flush(_QUE_RX));
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXCOUNT), 0u);
    EXPECT_TRUE(m_serial->Flush(_QUE_RXTX));
    EXPECT_FALSE(m_serial->Flush(0));
    EXPECT_FALSE(m_serial->Flush(4));
    EXPECT_EQ(Reports(), (Texts{Assert("FALSE"), Assert("FALSE")}));
}

TEST_F(CSerialTest, ClosingEndsAWriteThatIsHeldUp) {
    for (int i = 0; i < 3; ++i) {
        Open();
        Block();
        EXPECT_TRUE(m_serial->Close());
        EXPECT_EQ(Reports(), Texts{ABORTED_COMPLETION});
    }
    Open();
    EXPECT_EQ(Free(), 4096u);
}

// The race between a chunk's way to the driver and the flush that stops the thread; a lost chunk
// would hold the thread up for its half minute.
TEST_F(CSerialTest, ClosingAtAnyMomentEndsTheThread) {
    const std::string bytes = Pattern(4096);
    for (int i = 0; i < 50; ++i) {
        Open();
        for (int j = 0; j < i; ++j)
            Write(bytes.substr(0, std::min<DWORD>(Free(), 300)));
        EXPECT_TRUE(m_serial->Close());
        for (const std::string& report : Reports())
            EXPECT_EQ(report, ABORTED_COMPLETION);
    }
}

TEST_F(CSerialTest, DeviceGoneWhileIdle) {
    Open();
    const HANDLE hangup = m_wait->GetHangupHandle();
    m_pty.Send("x");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(hangup, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(m_wait->IsDeviceGone());
    EXPECT_EQ(ReadSome(10), "x");

    m_pty.Unplug();
    EXPECT_EQ(WaitForSingleObject(hangup, 20000), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), 0), WAIT_OBJECT_0);
    EXPECT_TRUE(m_wait->IsDeviceGone());
    EXPECT_FALSE(m_wait->Drain(20000));
    EXPECT_EQ(Reports(), Texts{});
    char byte = 0;
    EXPECT_EQ(m_serial->Read(&byte, 1), 0u);
    EXPECT_EQ(Reports(),
              Texts{"CVSerial::Read() - ClearCommError() failed - GetLastError() = 1167\n"});
    EXPECT_TRUE(m_serial->IsOpen());
    EXPECT_TRUE(m_serial->Close());
}

TEST_F(CSerialTest, DeviceGoneDuringAWriteThatIsHeldUp) {
    Open();
    Block();
    const std::string bytes = Pattern(20000);
    DWORD written = 0;
    std::thread writer([&] { written = Write(bytes); });
    m_pty.Unplug();
    writer.join();
    EXPECT_EQ(written, bytes.size());
    EXPECT_FALSE(m_wait->Drain(20000));
    for (const std::string& report : Reports())
        EXPECT_TRUE(report == GONE_WRITE || report == GONE_COMPLETION) << report;
    m_serial->Close();
    for (const std::string& report : Reports())
        EXPECT_EQ(report.find("Forcibly"), std::string::npos) << report;
}

// A device that takes nothing more while its echo is not taken.
TEST_F(CSerialTest, LongWriteToAnEchoingDeviceEnds) {
    Open();
    const std::string bytes = Pattern(1 << 20);
    std::string received;
    std::atomic<bool> isDone = false;
    std::thread device([&] {
        while (received.size() < bytes.size()) {
            const std::string some = m_pty.ReceiveSome(4096);
            if (some.empty())
                break;
            received += some;
            m_pty.Send(some);
        }
        isDone = true;
    });
    EXPECT_EQ(Write(bytes), bytes.size());
    while (!isDone) {
        char echo[4096];
        if (WaitForSingleObject(m_wait->GetReceiveHandle(), 20) == WAIT_OBJECT_0)
            m_serial->Read(echo, sizeof(echo));
    }
    device.join();
    EXPECT_TRUE(received == bytes);
    EXPECT_EQ(Reports(), Texts{"CVSerial::Write() - Receive queue overflow\n"});
}

} // namespace
