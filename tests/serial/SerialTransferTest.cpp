// Bytes through an open port, to and from a device that reads, holds back, echoes or goes away.
#include "tests/serial/SerialFixture.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr const char* kAbortedCompletion =
    "CVSerial::WriteThreadProc() - GetOverlappedResult() failed - GetLastError() = 995\n";

// The write thread makes room in the buffer by whole chunks, a quarter of the capacity each.
TEST_F(CSerialTest, ChunksAreAQuarterOfTheBuffer) {
    for (const DWORD size : {4096u, 10000u}) {
        Open();
        ASSERT_TRUE(m_serial->SetBufferSizes(KEEP_SETTING, size));
        Block();
        while (Free() < size && !m_device.Hear(1, 256).empty())
            EXPECT_EQ(Free() % (size / 4), 0u) << Free();
        EXPECT_EQ(Free(), size);
        EXPECT_TRUE(m_serial->Close());
    }
}

TEST_F(CSerialTest, FlushDiscardsWhatWaits) {
    Open();
    Block();
    EXPECT_FALSE(m_wait->Drain(50));
    EXPECT_TRUE(m_serial->Flush(_QUE_TX));
    EXPECT_EQ(Free(), 4096u);
    EXPECT_TRUE(m_wait->Drain(kPatience));
    EXPECT_EQ(Reports(), Texts{kAbortedCompletion});

    // What the device has already is its own; then comes what was written after the flush.
    const std::string mark = "after the flush";
    EXPECT_EQ(Write(mark), mark.size());
    for (std::string received; !received.ends_with(mark);)
        received += m_device.Hear(1, 4096);

    m_device.Say("old");
    EXPECT_EQ(WaitForSingleObject(m_wait->GetReceiveHandle(), kPatience), WAIT_OBJECT_0);
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXCOUNT), 3u);
    EXPECT_TRUE(m_serial->Flush(_QUE_RX));
    EXPECT_EQ(m_serial->GetQueueInfo(_QUE_RXCOUNT), 0u);
}

// The race between a chunk's way to the driver and the flush that stops the thread; a lost chunk
// would hold the thread up for its half minute.
TEST_F(CSerialTest, ClosingAtAnyMomentEndsTheThread) {
    for (int i = 0; i < 50; ++i) {
        Open();
        EXPECT_EQ(Free(), 4096u);
        for (int j = 0; j < i; ++j)
            Write(s_pattern.substr(0, std::min<DWORD>(Free(), 300)));
        EXPECT_TRUE(m_serial->Close());
        for (const std::string& report : Reports())
            EXPECT_EQ(report, kAbortedCompletion);
    }
}

TEST_F(CSerialTest, DeviceGoneDuringAWriteThatIsHeldUp) {
    Open();
    Block();
    DWORD written = 0;
    std::thread writer([&] { written = Write(s_pattern.substr(0, 20000)); });
    m_device.CloseMaster();
    writer.join();
    EXPECT_EQ(written, 20000u);
    EXPECT_FALSE(m_wait->Drain(kPatience));
    for (const std::string& report : Reports())
        EXPECT_TRUE(report.ends_with(" failed - GetLastError() = 1167\n")) << report;
    m_serial->Close();
    for (const std::string& report : Reports())
        EXPECT_EQ(report.find("Forcibly"), std::string::npos) << report;
}

// A device that takes nothing before it has got rid of what it has to say. That is kept, up to a
// bound; beyond it a line with flow control holds the device up, one without goes short.
TEST_F(CSerialTest, WhatComesDuringALongWriteIsKept) {
    const struct {
        DWORD flowControl;
        int times; // that the device says the pattern
        bool isComplete;
    } rows[] = {{_FLOW_NONE, 1, true}, {_FLOW_NONE, 4, false}, {_FLOW_RTSCTS, 4, true}};
    m_serial->SetDataFormat(115200, KEEP_SETTING, KEEP_SETTING, KEEP_SETTING);
    for (const auto& row : rows) {
        m_serial->SetFlowControl(row.flowControl);
        Open();
        std::atomic<int> said = 0;
        std::string text;
        for (int i = 0; i < row.times; ++i)
            text += s_pattern;
        std::thread speaker([&] {
            for (std::size_t at = 0; at < text.size(); at += 4096, ++said)
                m_device.Say(text.substr(at, 4096));
        });
        std::thread listener([&] {
            for (int before = -1; before != said; Sleep(300))
                before = said;
            EXPECT_TRUE(m_device.Hear(s_pattern.size()) == s_pattern);
        });
        EXPECT_EQ(Write(s_pattern), s_pattern.size());
        listener.join();
        const Texts overflow = {"CVSerial::Write() - Receive queue overflow\n"};
        EXPECT_EQ(Reports(), row.isComplete ? Texts() : overflow);
        EXPECT_TRUE(!row.isComplete || Read(static_cast<DWORD>(text.size())) == text);
        speaker.join();
        EXPECT_TRUE(m_serial->Close());
    }
}

} // namespace
