// The data trace: bytes into lines, and what is kept for the next send.
#include "modem/DataTrace.h"

#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using std::string_literals::operator""s;

class CSink final : public ITraceSink {
  public:
    CSink() { SetTraceSink(this); }
    ~CSink() { SetTraceSink(nullptr); }
    BOOL IsCapturing() const override { return m_bOn; }
    void WriteLine(std::string_view line) override { m_lines.append(line) += '\n'; }

    // The lines since the last look.
    std::string Take() { return std::exchange(m_lines, {}); }

    BOOL m_bOn = TRUE;

  private:
    std::string m_lines;
};

void Trace(const std::string& bytes, BOOL sent) {
    TraceData(bytes.data(), static_cast<DWORD>(bytes.size()), sent);
}

std::string Repeat(int count, const std::string& text) {
    return count == 0 ? "" : text + Repeat(count - 1, text);
}

// A line, with the second column where it belongs unless the first one reaches beyond.
std::string Line(const std::string& direction, const std::string& text, const std::string& codes) {
    std::string line = direction + " [" + text + "]";
    line.resize(std::max<std::size_t>(line.size(), 70), ' ');
    return line + "[" + codes + "]\n";
}

std::string Sent(const std::string& text, const std::string& codes) {
    return Line("[PC ==>     ] ", text, codes);
}

TEST(DataTrace, RendersBytesAsLines) {
    Trace("for nobody", FALSE);
    CSink sink;
    const std::string full = Sent(Repeat(30, "a"), Repeat(30, "61 "));
    const std::pair<std::string, std::string> rows[] = {
        {"AT\r", "[PC ==>     ]  [AT<CR>]" + Repeat(47, " ") + "[41 54 0d ]\n"},
        {"\0a\0"s, Sent("a", "00 61 00 ")},
        {"%s%n%", Sent("%s%n%", "25 73 25 6e 25 ")},
        {"\x1B[\x07\xFF", Sent("\x1B[\x07\xFF", "1b 5b 07 ff ")},
        {Repeat(65, "a"), full + full + Sent("aaaaa", Repeat(5, "61 "))},
        // At the column, and beyond it.
        {Repeat(13, "\n") + "aa", Sent(Repeat(13, "<LF>") + "aa", Repeat(13, "0a ") + "61 61 ")},
        {Repeat(30, "\r"), Sent(Repeat(30, "<CR>"), Repeat(30, "0d "))},
    };
    for (const auto& [bytes, lines] : rows) {
        Trace(bytes, TRUE);
        EXPECT_EQ(sink.Take(), lines);
    }
}

TEST(DataTrace, KeepsWhatIsReceivedForTheNextSend) {
    const std::string received = "[  <== Phone] ";
    CSink sink;
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_reads = {"\r\nO", "K\r\n"};
    char buffer[100];
    DWORD count = 0;
    while (modem.Read(buffer, sizeof buffer, count))
        continue;
    EXPECT_EQ(sink.Take(), "");
    EXPECT_TRUE(modem.SendString("AT"));
    EXPECT_EQ(sink.Take(),
              Line(received, "<CR><LF>OK<CR><LF>", "0d 0a 4f 4b 0d 0a ") + Sent("AT", "41 54 "));
    Trace("end", FALSE);
    DumpPending();
    DumpPending();
    EXPECT_EQ(sink.Take(), Line(received, "end", "65 6e 64 "));

    // What comes while nobody looks is not shown to whoever looks later.
    sink.m_bOn = FALSE;
    Trace("before", FALSE);
    Trace("x", TRUE);
    sink.m_bOn = TRUE;
    Trace("y", TRUE);
    EXPECT_EQ(sink.Take(), Sent("y", "79 "));
}

TEST(DataTrace, LeavesOutReadsBeyondItsLimit) {
    CSink sink;
    // The sizes of the reads, and how many bytes of them the next send shows.
    const std::pair<std::vector<std::size_t>, int> rows[] = {
        {{9000, 2000}, 9000},     {{9000, 1000}, 10000}, {{9000, 1001, 1000, 1}, 10000},
        {{10001, 4000000000}, 0}, {{10000, 1}, 10000},
    };
    const std::string bytes(10001, 'r');
    for (const auto& [reads, shown] : rows) {
        for (const std::size_t read : reads)
            TraceData(bytes.data(), static_cast<DWORD>(read), FALSE);
        Trace("s", TRUE);
        EXPECT_EQ(std::ranges::count(sink.Take(), 'r'), shown);
    }
}

} // namespace
