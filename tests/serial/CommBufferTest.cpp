#include "CORE/VXSerial/Lib/CommBuffer.h"

#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct SState {
    DWORD dwSize;
    DWORD dwCount;
    bool hasData;
    bool hasSpace;

    friend bool operator==(const SState&, const SState&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const SState& state) {
        return stream << state.dwSize << '/' << state.dwCount << (state.hasData ? " data" : "")
                      << (state.hasSpace ? " space" : "");
    }
};

bool IsSet(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

SState StateOf(CVCommBuffer& buffer) {
    SState state = {};
    DWORD free = 0;
    buffer.GetBufferStatus(&state.dwSize, &state.dwCount, &free);
    EXPECT_EQ(free, state.dwSize - state.dwCount);
    state.hasData = IsSet(buffer.GetDataEvent());
    state.hasSpace = IsSet(buffer.GetSpaceEvent());
    return state;
}

struct SStep {
    const char* what;
    DWORD (*step)(CVCommBuffer& buffer);
    DWORD result;
    SState state;
};

template <DWORD Count> DWORD Write(CVCommBuffer& buffer) {
    const std::string bytes(Count, 'x');
    return buffer.Write(bytes.data(), Count);
}
template <DWORD Count, BOOL Remove> DWORD Read(CVCommBuffer& buffer) {
    std::string bytes(Count, '\0');
    return buffer.Read(bytes.data(), Count, Remove);
}
template <DWORD Count> DWORD Clear(CVCommBuffer& buffer) {
    return buffer.ClearBuffer(Count);
}
template <DWORD Size> DWORD Resize(CVCommBuffer& buffer) {
    return buffer.SetBufferSize(Size);
}

constexpr SStep STEPS[] = {
    {"nothing in", Write<0>, 0, {4096, 0, false, true}},
    {"nothing out", Read<10, TRUE>, 0, {4096, 0, false, true}},
    {"clear nothing", Clear<CVCommBuffer::ALL_BYTES>, 0, {4096, 0, false, true}},
    {"some in", Write<10>, 10, {4096, 10, true, true}},
    {"look at more than there is", Read<20, FALSE>, 10, {4096, 10, true, true}},
    {"clear all", Clear<CVCommBuffer::ALL_BYTES>, 10, {4096, 0, false, true}},
    {"more in than fits", Write<5000>, 4096, {4096, 4096, true, false}},
    {"in when full", Write<1>, 0, {4096, 4096, true, false}},
    {"same size", Resize<4096>, 4096, {4096, 4096, true, false}},
    {"grow when full", Resize<8192>, 8192, {8192, 4096, true, false}},
    {"one out", Read<1, TRUE>, 1, {8192, 4095, true, true}},
    {"shrink below the bytes", Resize<100>, 4095, {4095, 4095, true, true}},
    {"in when shrunk to full", Write<1>, 0, {4095, 4095, true, false}},
    {"no capacity", Resize<0>, 4095, {4095, 4095, true, false}},
    {"all out", Read<4095, TRUE>, 4095, {4095, 0, false, true}},
    {"tiny", Resize<1>, 1, {1, 0, false, true}},
    {"fill tiny", Write<2>, 1, {1, 1, true, false}},
};

TEST(CommBuffer, EventsFollowTheBytes) {
    CReportLog log;
    CVCommBuffer buffer;
    EXPECT_EQ(StateOf(buffer), (SState{4096, 0, false, true}));
    for (const SStep& step : STEPS) {
        EXPECT_EQ(step.step(buffer), step.result) << step.what;
        EXPECT_EQ(StateOf(buffer), step.state) << step.what;
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

TEST(CommBuffer, NullPointersAreReported) {
    CReportLog log;
    CVCommBuffer buffer;
    EXPECT_EQ(buffer.Write(nullptr, 1), 0u);
    EXPECT_EQ(buffer.Read(nullptr, 1, TRUE), 0u);
    const std::vector<std::string> texts = log.Take();
    ASSERT_EQ(texts.size(), 2u);
    for (const std::string& text : texts)
        EXPECT_NE(text.find("\n\tFile: CommBuffer\n\tExp: lpBuffer\n"), std::string::npos);
}

} // namespace
