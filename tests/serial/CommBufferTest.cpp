#include "CORE/VXSerial/Lib/CommBuffer.h"

#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#include <string>

namespace {

bool IsSet(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

struct SStep {
    const char* what;
    DWORD (*step)(CVCommBuffer& buffer);
    DWORD result;
    DWORD size;
    DWORD count;
    bool hasSpace; // as the last transfer or clearing left it: resizing moves no event
};

template <DWORD Count> DWORD Write(CVCommBuffer& buffer) {
    const std::string bytes(Count, 'x');
    return buffer.Write(bytes.data(), Count);
}
template <DWORD Count, BOOL Remove> DWORD Read(CVCommBuffer& buffer) {
    std::string bytes(Count, '\0');
    return buffer.Read(bytes.data(), Count, Remove);
}
DWORD ClearAll(CVCommBuffer& buffer) {
    return buffer.ClearBuffer(CVCommBuffer::ALL_BYTES);
}
template <DWORD Size> DWORD Resize(CVCommBuffer& buffer) {
    return buffer.SetBufferSize(Size);
}

constexpr SStep STEPS[] = {
    {"nothing in", Write<0>, 0, 4096, 0, true},
    {"nothing out", Read<10, TRUE>, 0, 4096, 0, true},
    {"some in", Write<10>, 10, 4096, 10, true},
    {"look at more than there is", Read<20, FALSE>, 10, 4096, 10, true},
    {"clear all", ClearAll, 10, 4096, 0, true},
    {"more in than fits", Write<5000>, 4096, 4096, 4096, false},
    {"in when full", Write<1>, 0, 4096, 4096, false},
    {"grow when full", Resize<8192>, 8192, 8192, 4096, false},
    {"one out", Read<1, TRUE>, 1, 8192, 4095, true},
    {"shrink below the bytes", Resize<100>, 4095, 4095, 4095, true},
    {"in when shrunk to full", Write<1>, 0, 4095, 4095, false},
    {"all out", Read<4095, TRUE>, 4095, 4095, 0, true},
    {"tiny", Resize<1>, 1, 1, 0, true},
    {"fill tiny", Write<2>, 1, 1, 1, false},
};

TEST(CommBuffer, EventsFollowTheBytes) {
    CReportLog log;
    CVCommBuffer buffer;
    for (const SStep& step : STEPS) {
        SCOPED_TRACE(step.what);
        EXPECT_EQ(step.step(buffer), step.result);
        DWORD size = 0;
        DWORD count = 0;
        DWORD free = 0;
        buffer.GetBufferStatus(&size, &count, &free);
        EXPECT_EQ(size, step.size);
        EXPECT_EQ(count, step.count);
        EXPECT_EQ(free, step.size - step.count);
        EXPECT_EQ(IsSet(buffer.GetDataEvent()), step.count > 0);
        EXPECT_EQ(IsSet(buffer.GetSpaceEvent()), step.hasSpace);
    }
    EXPECT_EQ(log.Take(),
              std::vector<std::string>{"CVCommBuffer::SetBufferSize() - The new buffer size is too "
                                       "small to hold the existing buffer data\n"});
}

TEST(CommBuffer, BytesComeInOrderAndSurviveResizing) {
    CVCommBuffer buffer;
    char bytes[16] = {};
    EXPECT_EQ(buffer.Write("abcdef", 6), 6u);
    EXPECT_EQ(buffer.Read(bytes, 3, FALSE), 3u);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(buffer.Read(bytes, 2, TRUE), 2u);
    EXPECT_EQ(buffer.SetBufferSize(100000), 100000u);
    EXPECT_EQ(buffer.Write("gh", 2), 2u);
    EXPECT_EQ(buffer.SetBufferSize(1), 6u);
    EXPECT_EQ(buffer.ClearBuffer(1), 1u);
    EXPECT_EQ(buffer.Read(bytes, sizeof(bytes), TRUE), 5u);
    EXPECT_EQ(std::string(bytes, 5), "defgh");
}

} // namespace
