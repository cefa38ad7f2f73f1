#include "CORE/VXSerial/Lib/CommBuffer.h"

#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#include <string>

namespace {

bool IsSet(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

using Step = DWORD (*)(CVCommBuffer& buffer, DWORD count);

constexpr Step WRITE = [](CVCommBuffer& buffer, DWORD count) {
    return buffer.Write(std::string(count, 'x').data(), count);
};
constexpr Step READ = [](CVCommBuffer& buffer, DWORD count) {
    return buffer.Read(std::string(count, '\0').data(), count, TRUE);
};
constexpr Step LOOK = [](CVCommBuffer& buffer, DWORD count) {
    return buffer.Read(std::string(count, '\0').data(), count, FALSE);
};
constexpr Step CLEAR = [](CVCommBuffer& buffer, DWORD count) { return buffer.ClearBuffer(count); };
constexpr Step RESIZE = [](CVCommBuffer& buffer, DWORD size) { return buffer.SetBufferSize(size); };

TEST(CommBuffer, EventsFollowTheBytes) {
    const struct {
        Step step;
        DWORD argument;
        DWORD result;
        DWORD size;
        DWORD count;
        bool hasSpace; // as the last transfer or clearing left it: resizing moves no event
    } steps[] = {
        {WRITE, 0, 0, 4096, 0, true},
        {READ, 10, 0, 4096, 0, true},
        {WRITE, 10, 10, 4096, 10, true},
        {LOOK, 20, 10, 4096, 10, true},
        {CLEAR, CVCommBuffer::kAllBytes, 10, 4096, 0, true},
        {WRITE, 5000, 4096, 4096, 4096, false},
        {WRITE, 1, 0, 4096, 4096, false},
        {RESIZE, 8192, 8192, 8192, 4096, false},
        {READ, 1, 1, 8192, 4095, true},
        {RESIZE, 100, 4095, 4095, 4095, true},
        {WRITE, 1, 0, 4095, 4095, false},
        {READ, 4095, 4095, 4095, 0, true},
        {RESIZE, 1, 1, 1, 0, true},
        {WRITE, 2, 1, 1, 1, false},
    };
    CReportLog log;
    CVCommBuffer buffer;
    for (const auto& row : steps) {
        SCOPED_TRACE(&row - steps);
        EXPECT_EQ(row.step(buffer, row.argument), row.result);
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
