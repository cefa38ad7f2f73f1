// One line of a command file: what is sent, and what counts as its answer.
#include "terminal/TermModem.h"

#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

namespace {

constexpr auto kWaitable = CSubstituteSerial::Kind::Waitable;
constexpr DWORD kMinute = 60000;

TEST(TermModem, KnowsFinalResultsOfCommandFiles) {
    const struct {
        std::vector<std::string> reads;
        BOOL isFinal;
        std::string response;
    } rows[] = {
        {{"ATI\r\r\nOK\r\n"}, TRUE, "ATI\r\r\nOK\r\n"},
        {{"\r", "\nO", "K\r", "\n"}, TRUE, "\r\nOK\r\n"},
        {{"\r\nERROR\r\n"}, TRUE, "\r\nERROR\r\n"},
        {{"\r\nOK\r\nRING"}, TRUE, "\r\nOK\r\nRING"},
        {{"\r\n+CME ERROR: 10\r\n"}, FALSE, "\r\n+CME ERROR: 10\r\n"},
        {{"OK\r\n"}, FALSE, "OK\r\n"},
        {{std::string("a\0\r\nOK\r\n", 8)}, FALSE, "a"},
        // With the buffer full the time is waited out and nothing more is read.
        {{std::string(3000, 'x') + "\r\nOK\r\n"}, FALSE, std::string(1023, 'x')},
    };
    for (const auto& row : rows) {
        CSubstituteSerial serial(kWaitable);
        CTestOn<CTermModem> modem(&serial);
        for (const std::string& read : row.reads)
            serial.Arrive(read);
        std::string response = "left over";
        const DWORD start = GetTickCount();
        EXPECT_EQ(modem.WaitForFinalResult(response, row.isFinal ? kMinute : 50), row.isFinal);
        EXPECT_GE(GetTickCount() - start, row.isFinal ? 0U : 50U);
        EXPECT_EQ(response, row.response);
        EXPECT_LE(serial.m_nReads, static_cast<int>(row.reads.size()) + 1) << row.response;
    }
}

TEST(TermModem, EachLineIsSentToAModemThatIsReadyAndThere) {
    CSubstituteSerial serial(kWaitable);
    CTestOn<CTermModem> modem(&serial);
    serial.m_answer = "\r\nOK\r\n";
    std::string response;
    for (const DWORD pause : {0, 100}) {
        const DWORD sent = serial.m_dwWriteTick;
        serial.m_calls.clear();
        EXPECT_TRUE(modem.SendLineWaitFinal("AT\r", response));
        EXPECT_EQ(serial.m_calls, (std::vector<std::string>{"flush 1", "flush 2", "write AT\r"}));
        EXPECT_GE(serial.m_dwWriteTick - sent, pause);
    }
    serial.Vanish();
    serial.m_calls.clear();
    EXPECT_FALSE(modem.SendLineWaitFinal("AT\r", response));
    EXPECT_EQ(serial.m_calls, std::vector<std::string>{});
}

} // namespace
