// One line of a command file: what is sent, and what counts as its answer.

#include "terminal/TermModem.h"

#include "platform/Clock.h"
#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using CTestTermModem = CTestOn<CTermModem>;

constexpr DWORD kMinute = 60000;

TEST(TermModem, KnowsFinalResultsOfCommandFiles) {
    const struct {
        const char* name;
        std::vector<std::string> reads;
        BOOL final;
        std::string response;
    } rows[] = {
        {"whole", {"ATI\r\r\nOK\r\n"}, TRUE, "ATI\r\r\nOK\r\n"},
        {"split", {"\r", "\nO", "K\r", "\n"}, TRUE, "\r\nOK\r\n"},
        {"error", {"\r\nERROR\r\n"}, TRUE, "\r\nERROR\r\n"},
        {"all of the last read", {"\r\nOK\r\nRING"}, TRUE, "\r\nOK\r\nRING"},
        {"extended", {"\r\n+CME ERROR: 10\r\n"}, FALSE, "\r\n+CME ERROR: 10\r\n"},
        {"no leading line end", {"OK\r\n"}, FALSE, "OK\r\n"},
        {"behind a NUL", {std::string("a\0\r\nOK\r\n", 8)}, FALSE, "a"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CSubstituteSerial serial;
        CTestTermModem modem(&serial);
        serial.m_reads.assign(row.reads.begin(), row.reads.end());
        std::string response = "left over";
        EXPECT_EQ(modem.WaitForFinalResult(response, row.final ? kMinute : 30), row.final);
        EXPECT_EQ(response, row.response);
    }
}

TEST(TermModem, EachLineIsSentToAModemThatIsReadyAndThere) {
    CSubstituteSerial serial(CSubstituteSerial::Kind::Waitable);
    CTestTermModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    serial.m_answer = "\r\nOK\r\n";
    DWORD sent = 0;
    for (const DWORD pause : {0, 100}) {
        std::string response;
        serial.m_calls.clear();
        EXPECT_TRUE(modem.SendLineWaitFinal("AT\r", response));
        EXPECT_EQ(serial.m_calls, (std::vector<std::string>{"flush 1", "flush 2", "write AT\r"}));
        EXPECT_GE(serial.m_dwWriteTick - std::exchange(sent, serial.m_dwWriteTick), pause);
    }
    serial.Vanish();
    serial.m_calls.clear();
    std::string response;
    EXPECT_FALSE(modem.SendLineWaitFinal("AT\r", response));
    EXPECT_TRUE(serial.m_calls.empty());
}

TEST(TermModem, AFullBufferWaitsOutTheTimeWithoutReadingOn) {
    CSubstituteSerial serial(CSubstituteSerial::Kind::Waitable);
    CTestTermModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    serial.Arrive(std::string(3000, 'x') + "\r\nOK\r\n");
    std::string response;
    const DWORD start = GetTickCount();
    EXPECT_FALSE(modem.WaitForFinalResult(response, 50));
    EXPECT_GE(GetTickCount() - start, 50u);
    EXPECT_EQ(response, std::string(1023, 'x'));
    EXPECT_LE(serial.m_nReads, 3);
}

} // namespace
