#include "CORE/VXSerial/Lib/CommBuffer.h"

#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

bool IsSet(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

TEST(CommBuffer, EventsFollowTheBytes) {
    CReportLog log;
    CVCommBuffer buffer;
    BYTE bytes[8192] = {};
    const struct {
        std::function<DWORD()> step;
        DWORD result;
        DWORD size;
        DWORD count;
        bool hasSpace; // as the last transfer or clearing left it: resizing moves no event
    } steps[] = {
        {[&] { return buffer.Read(bytes, 10, TRUE); }, 0, 4096, 0, true},
        {[&] { return buffer.Write(bytes, 10); }, 10, 4096, 10, true},
        {[&] { return buffer.Read(bytes, 20, FALSE); }, 10, 4096, 10, true},
        {[&] { return buffer.ClearBuffer(CVCommBuffer::kAllBytes); }, 10, 4096, 0, true},
        {[&] { return buffer.Write(bytes, 5000); }, 4096, 4096, 4096, false},
        {[&] { return buffer.Write(bytes, 1); }, 0, 4096, 4096, false},
        {[&] { return buffer.SetBufferSize(8192); }, 8192, 8192, 4096, false},
        {[&] { return buffer.Read(bytes, 1, TRUE); }, 1, 8192, 4095, true},
        {[&] { return buffer.SetBufferSize(100); }, 4095, 4095, 4095, true},
        {[&] { return buffer.Write(bytes, 1); }, 0, 4095, 4095, false},
        {[&] { return buffer.Read(bytes, 4095, TRUE); }, 4095, 4095, 0, true},
    };
    for (const auto& row : steps) {
        SCOPED_TRACE(&row - steps);
        EXPECT_EQ(row.step(), row.result);
        DWORD size = 0;
        DWORD count = 0;
        DWORD free = 0;
        buffer.GetBufferStatus(&size, &count, &free);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(count, row.count);
        EXPECT_EQ(free, row.size - row.count);
        EXPECT_EQ(IsSet(buffer.GetDataEvent()), row.count > 0);
        EXPECT_EQ(IsSet(buffer.GetSpaceEvent()), row.hasSpace);
    }
    EXPECT_EQ(log.Take(),
              std::vector<std::string>{"CVCommBuffer::SetBufferSize() - The new buffer size is too "
                                       "small to hold the existing buffer data\n"});
}

} // namespace
