// The data trace: bytes into lines, and what is kept for the next send.
#include "modem/DataTrace.h"

#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

const std::string kSent = "[PC ==>     ]  [";
const std::string kReceived = "[  <== Phone]  [";

class CSink final : public ITraceSink {
  public:
    CSink() { SetTraceSink(this); }
    ~CSink() { SetTraceSink(nullptr); }
    BOOL IsCapturing() const override { return m_bOn; }
    void WriteLine(std::string_view line) override { m_lines.emplace_back(line); }

    // The lines since the last look.
    Lines Take() { return std::exchange(m_lines, {}); }

    BOOL m_bOn = TRUE;

  private:
    Lines m_lines;
};

void Trace(const std::string& bytes, BOOL sent) {
    TraceData(bytes.data(), static_cast<DWORD>(bytes.size()), sent);
}

std::string Repeat(int count, const std::string& text) {
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

TEST(DataTrace, RendersBytesAsLines) {
    Trace("for nobody", FALSE);
    CSink sink;
    const std::string all = Repeat(30, "a");
    const std::string allHexadecimal = "[" + Repeat(30, "61 ") + "]";
    const std::string full = kSent + all + "]" + std::string(23, ' ') + allHexadecimal;
    const struct {
        std::string bytes;
        Lines lines;
    } rows[] = {
        {"", {}},
        {"AT\r", {kSent + "AT<CR>]" + std::string(47, ' ') + "[41 54 0d ]"}},
        {std::string("\0a\0", 3), {kSent + "a]" + std::string(52, ' ') + "[00 61 00 ]"}},
        {"%s%n%", {kSent + "%s%n%]" + std::string(48, ' ') + "[25 73 25 6e 25 ]"}},
        {"\x1B[\x07\xFF", {kSent + "\x1B[\x07\xFF]" + std::string(49, ' ') + "[1b 5b 07 ff ]"}},
        {Repeat(30, "a"), {full}},
        {Repeat(65, "a"),
         {full, full, kSent + "aaaaa]" + std::string(48, ' ') + "[61 61 61 61 61 ]"}},
        // Just short of the column, at it, and beyond it.
        {Repeat(12, "\n") + "aaaa",
         {kSent + Repeat(12, "<LF>") + "aaaa] [" + Repeat(12, "0a ") + "61 61 61 61 ]"}},
        {Repeat(12, "\n") + "aaaaa",
         {kSent + Repeat(12, "<LF>") + "aaaaa][" + Repeat(12, "0a ") + "61 61 61 61 61 ]"}},
        {Repeat(30, "\r"), {kSent + Repeat(30, "<CR>") + "][" + Repeat(30, "0d ") + "]"}},
    };
    for (const auto& row : rows) {
        Trace(row.bytes, TRUE);
        EXPECT_EQ(sink.Take(), row.lines) << ::testing::PrintToString(row.bytes);
    }
}

TEST(DataTrace, KeepsWhatIsReceivedForTheNextSend) {
    CSink sink;
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_reads = {"\r\nO", "K\r\n"};
    char buffer[100];
    DWORD count = 0;
    while (modem.Read(buffer, sizeof buffer, count))
        continue;
    EXPECT_EQ(sink.Take(), Lines{});
    EXPECT_TRUE(modem.SendString("AT"));
    EXPECT_EQ(sink.Take(), (Lines{kReceived + "<CR><LF>OK<CR><LF>]" + std::string(35, ' ') +
                                      "[0d 0a 4f 4b 0d 0a ]",
                                  kSent + "AT]" + std::string(51, ' ') + "[41 54 ]"}));
    Trace("end", FALSE);
    DumpPending();
    DumpPending();
    EXPECT_EQ(sink.Take(), Lines{kReceived + "end]" + std::string(50, ' ') + "[65 6e 64 ]"});

    // What comes while nobody looks is not shown to whoever looks later.
    sink.m_bOn = FALSE;
    Trace("before", FALSE);
    Trace("x", TRUE);
    sink.m_bOn = TRUE;
    Trace("y", TRUE);
    EXPECT_EQ(sink.Take(), Lines{kSent + "y]" + std::string(52, ' ') + "[79 ]"});
}

TEST(DataTrace, LeavesOutReadsBeyondItsLimit) {
    CSink sink;
    // The sizes of the reads, and how many bytes of them the next send shows.
    const std::pair<std::vector<std::size_t>, std::size_t> rows[] = {
        {{9000, 2000}, 9000},     {{9000, 1000}, 10000}, {{9000, 1001, 1000, 1}, 10000},
        {{10001, 4000000000}, 0}, {{10000, 1}, 10000},
    };
    const std::string bytes(10001, 'r');
    for (const auto& [reads, shown] : rows) {
        for (const std::size_t read : reads)
            TraceData(bytes.data(), static_cast<DWORD>(read), FALSE);
        Trace("s", TRUE);
        std::string log;
        for (const std::string& line : sink.Take())
            log += line;
        EXPECT_EQ(static_cast<std::size_t>(std::count(log.begin(), log.end(), 'r')), shown);
    }
}

} // namespace
