#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

constexpr DWORD kMinute = 60000;

using Calls = std::vector<std::string>;

class CModemTest : public testing::Test {
  protected:
    // What the device answers, behind the code; the code alone where it gives no final result.
    std::string Collect(DWORD timeout) {
        DWORD code = 7;
        std::string text = "left over";
        const BOOL answered = m_modem.GetResponse(code, text, timeout);
        EXPECT_EQ(answered, code != RESULT_NO_RESPONSE);
        return std::to_string(code) + " " + text;
    }

    CSubstituteSerial m_serial{CSubstituteSerial::Kind::Waitable};
    CTestModem m_modem{&m_serial};
};

TEST_F(CModemTest, BlocksOnAChannelThatCanBeWaitedFor) {
    std::thread device([this] {
        Sleep(50);
        m_serial.Arrive("\r\nO");
        Sleep(50);
        m_serial.Arrive("K\r\n");
    });
    EXPECT_EQ(Collect(kMinute), "0 ");
    device.join();
    EXPECT_LE(m_serial.m_nReads, 3);

    const DWORD start = GetTickCount();
    EXPECT_EQ(Collect(120), "100 ");
    EXPECT_GE(GetTickCount() - start, 120U);
    EXPECT_LE(m_serial.m_nReads, 4);
}

TEST_F(CModemTest, EndsAtOnceWhenTheDeviceGoesAway) {
    m_serial.Arrive("\r\n+CGMI");
    m_serial.Vanish();
    EXPECT_FALSE(m_modem.IsDeviceGone());
    // Were the time-outs waited for, the test's own would strike.
    EXPECT_EQ(Collect(INFINITE), "100 \r\n+CGMI");
    EXPECT_TRUE(m_modem.IsDeviceGone());
    m_modem.WaitWithoutReading(platform::CDeadline(INFINITE));
}

TEST_F(CModemTest, GivesUpOnADeviceThatNeverStops) {
    m_serial.m_endlessRead = std::string(1023, '\r');
    m_serial.Arrive("\r");
    EXPECT_LE(Collect(300).size(), CFinalResult::kMaxResponse + 4);
}

TEST_F(CModemTest, ClosesAPortThatCameWithoutATelephonyObject) {
    m_modem.AttachHandle(nullptr, TRUE);
    EXPECT_TRUE(m_modem.IsOpen());
    m_modem.Close();
    EXPECT_FALSE(m_modem.IsOpen());
}

TEST(Modem, TakesAnyAnswerOnceAndLeavesTheDeviceAHundredMilliseconds) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    DWORD code = 0;
    std::string text;
    for (const char* answer : {"\r\nOK\r\n", "\r\nERROR\r\n", "\r\n+CMS ERROR: 1\r\n"}) {
        serial.m_answer = answer;
        EXPECT_TRUE(modem.SendCommandGetResponse("AT\r", code, text));
        EXPECT_EQ(code, answer[2] == 'O' ? RESULT_OK : RESULT_ERROR);
        const DWORD answered = modem.m_dwLastResponse;
        serial.m_calls.clear();
        EXPECT_TRUE(modem.SendCommandGetResponse("AT\r", code, text));
        EXPECT_EQ(serial.m_calls, (Calls{"flush 1", "flush 2", "write AT\r"}));
        EXPECT_GE(serial.m_dwWriteTick - answered, 100U);
    }
}

} // namespace
