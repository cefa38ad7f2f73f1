#include "platform/Clock.h"
#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

constexpr DWORD kMinute = 60000;

struct Response {
    BOOL answered = FALSE;
    DWORD code = 7;
    std::string text = "left over";
    friend bool operator==(const Response&, const Response&) = default;
};

Response Collect(CVModem& modem, DWORD timeout) {
    Response response;
    response.answered = modem.GetResponse(response.code, response.text, timeout);
    return response;
}

TEST(Modem, GivesUpOnADeviceThatNeverStops) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_endlessRead = std::string(1023, '\r');
    const Response response = Collect(modem, 300);
    EXPECT_FALSE(response.answered);
    EXPECT_LE(response.text.size(), CFinalResult::kMaxResponse);
}

TEST(Modem, BlocksOnAChannelThatCanBeWaitedFor) {
    CSubstituteSerial serial(CSubstituteSerial::Kind::Waitable);
    CTestModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    std::thread device([&serial] {
        Sleep(50);
        serial.Arrive("\r\nO");
        Sleep(50);
        serial.Arrive("K\r\n");
    });
    EXPECT_EQ(Collect(modem, kMinute), (Response{TRUE, RESULT_OK, ""}));
    device.join();
    EXPECT_LE(serial.m_nReads, 3);

    const DWORD start = GetTickCount();
    EXPECT_EQ(Collect(modem, 120), (Response{FALSE, RESULT_NO_RESPONSE, ""}));
    EXPECT_GE(GetTickCount() - start, 120U);
    EXPECT_LE(serial.m_nReads, 4);
}

TEST(Modem, EndsAtOnceWhenTheDeviceGoesAway) {
    CSubstituteSerial serial(CSubstituteSerial::Kind::Waitable);
    CTestModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    serial.Arrive("\r\n+CGMI");
    serial.Vanish();
    EXPECT_FALSE(modem.IsDeviceGone());
    // Were the time-outs waited for, the test's own would strike.
    EXPECT_EQ(Collect(modem, 0xFFFFFFFF), (Response{FALSE, RESULT_NO_RESPONSE, "\r\n+CGMI"}));
    EXPECT_TRUE(modem.IsDeviceGone());
    modem.WaitWithoutReading(platform::CDeadline(0xFFFFFFFF));
}

TEST(Modem, ClosesAPortThatCameWithoutATelephonyObject) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    modem.AttachHandle(nullptr, TRUE);
    EXPECT_TRUE(modem.IsOpen());
    modem.Close();
    EXPECT_FALSE(modem.IsOpen());
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
