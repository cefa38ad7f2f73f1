#include "modem/Modem.h"

#include "platform/Clock.h"
#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

constexpr DWORD kMinute = 60000;

// A modem on a substitute channel, or on none.
class CTestModem : public CVModem {
  public:
    explicit CTestModem(ISerial* serial) {
        if (serial)
            serial->AddRef();
        m_pSerial.Reset(serial);
    }
    using CVModem::m_dwLastResponse;
    using CVModem::m_dwTimeout;
    using CVModem::m_nRetry;
    using CVModem::WaitWithoutReading;
};

struct Response {
    BOOL answered;
    DWORD code;
    std::string text;
};

Response Collect(CVModem& modem, DWORD timeout) {
    Response response{FALSE, 7, "left over"};
    response.answered = modem.GetResponse(response.code, response.text, timeout);
    return response;
}

void ExpectResponse(const Response& response, BOOL answered, DWORD code, const std::string& text) {
    EXPECT_EQ(response.answered, answered);
    EXPECT_EQ(response.code, code);
    EXPECT_EQ(response.text, text);
}

TEST(Modem, CollectsAnAnswerFromAPolledChannel) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_reads = {"", "AT\r", "", "\r\n+CSQ: 20,0\r\n", "\r\nO", "K\r\n", "later"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_OK, "AT\r\r\n+CSQ: 20,0");
    EXPECT_NE(modem.m_dwLastResponse, 0U);
    EXPECT_EQ(serial.m_reads.size(), 1U);

    serial.m_reads = {"\r\nERROR\r\n"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_ERROR, "");
    serial.m_reads = {"\r\n+CME ERROR: 1", "0\r\n"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_ERROR, "10");
    serial.m_reads = {"\r\n+CMS ERROR: no network\r\n"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_ERROR, "no network");
}

TEST(Modem, ReadsInPiecesAndBreaksThemAtANul) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    const std::string longLine(3000, 'z');
    serial.m_reads = {longLine + "\r\nOK\r\n"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_OK, longLine);
    EXPECT_EQ(serial.m_nReads, 3);

    serial.m_reads = {std::string("ab\0\r\nOK\r\n", 9), "c\r\nOK\r\n"};
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_OK, "abc");
}

TEST(Modem, MakesOneReadForATimeoutOfZero) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_reads = {"\r\nOK\r\n"};
    ExpectResponse(Collect(modem, 0), TRUE, RESULT_OK, "");
    const DWORD lastResponse = modem.m_dwLastResponse;

    serial.m_reads = {"half \r\nOK", "\r\n"};
    ExpectResponse(Collect(modem, 0), FALSE, RESULT_NO_RESPONSE, "half \r\nOK");
    EXPECT_EQ(serial.m_reads.size(), 1U);
    EXPECT_EQ(modem.m_dwLastResponse, lastResponse);
}

TEST(Modem, GivesUpOnADeviceThatNeverStops) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    serial.m_endlessRead = std::string(1023, '\r');
    const Response response = Collect(modem, 300);
    EXPECT_FALSE(response.answered);
    EXPECT_EQ(response.code, RESULT_NO_RESPONSE);
    EXPECT_LE(response.text.size(), CFinalResult::MAX_RESPONSE);
}

TEST(Modem, BlocksOnAChannelThatCanBeWaitedFor) {
    CWaitableSerial serial;
    CTestModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    std::thread device([&serial] {
        Sleep(50);
        serial.Arrive("\r\nO");
        Sleep(50);
        serial.Arrive("K\r\n");
    });
    ExpectResponse(Collect(modem, kMinute), TRUE, RESULT_OK, "");
    device.join();
    EXPECT_LE(serial.m_nReads, 3);

    const DWORD start = GetTickCount();
    ExpectResponse(Collect(modem, 120), FALSE, RESULT_NO_RESPONSE, "");
    EXPECT_GE(GetTickCount() - start, 120U);
    EXPECT_LE(serial.m_nReads, 4);
}

TEST(Modem, EndsAtOnceWhenTheDeviceGoesAway) {
    CWaitableSerial serial;
    CTestModem modem(&serial);
    ASSERT_TRUE(modem.Open("port"));
    serial.Arrive("\r\n+CGMI");
    serial.Vanish();
    EXPECT_FALSE(modem.IsDeviceGone());
    // Were the time-outs waited for, the test's own would strike.
    ExpectResponse(Collect(modem, 0xFFFFFFFF), FALSE, RESULT_NO_RESPONSE, "\r\n+CGMI");
    EXPECT_TRUE(modem.IsDeviceGone());
    modem.WaitWithoutReading(CDeadline(0xFFFFFFFF));

    DWORD code = 0;
    std::string text;
    modem.SetTimeout(0xFFFFFFFF);
    EXPECT_FALSE(modem.SendCommandGetResponse("AT\r", code, text));
    EXPECT_EQ(code, RESULT_NO_RESPONSE);
}

TEST(Modem, SendsASilentDeviceTheCommandThreeTimes) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    DWORD code = 0;
    std::string text = "left over";
    modem.SetTimeout(1);
    EXPECT_FALSE(modem.SendCommandGetResponse("AT\r", code, text));
    EXPECT_EQ(code, RESULT_NO_RESPONSE);
    EXPECT_EQ(text, "");
    const Calls attempt = {"flush 1", "flush 2", "write AT\r"};
    Calls attempts;
    for (int count = 0; count < 3; ++count)
        attempts.insert(attempts.end(), attempt.begin(), attempt.end());
    EXPECT_EQ(serial.m_calls, attempts);

    for (const int retry : {0, -1}) {
        serial.m_calls.clear();
        modem.m_nRetry = retry;
        code = 77;
        EXPECT_FALSE(modem.SendCommandGetResponse("AT\r", code, text));
        EXPECT_EQ(code, 77U);
        EXPECT_TRUE(serial.m_calls.empty());
    }
}

TEST(Modem, TakesAnErrorAndAShortWriteAsTheyCome) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    DWORD code = 0;
    std::string text;
    serial.m_answer = "\r\n+CME ERROR: 3\r\n";
    EXPECT_TRUE(modem.SendCommandGetResponse("AT+X\r", code, text));
    EXPECT_EQ(code, RESULT_ERROR);
    EXPECT_EQ(serial.m_calls, (Calls{"flush 1", "flush 2", "write AT+X\r"}));

    serial.m_answer = "\r\nOK\r\n";
    serial.m_dwWriteLimit = 2;
    EXPECT_FALSE(modem.SendCommand("AT\r"));
    EXPECT_TRUE(modem.SendCommandGetResponse("AT\r", code, text));
    EXPECT_EQ(code, RESULT_OK);
}

TEST(Modem, LeavesTheDeviceAHundredMillisecondsAfterAnAnswer) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    DWORD code = 0;
    std::string text;
    for (const char* answer : {"\r\nOK\r\n", "\r\nERROR\r\n", "\r\n+CMS ERROR: 1\r\n"}) {
        serial.m_answer = answer;
        EXPECT_TRUE(modem.SendCommandGetResponse("AT\r", code, text));
        const DWORD answered = modem.m_dwLastResponse;
        EXPECT_TRUE(modem.SendCommandGetResponse("AT\r", code, text));
        EXPECT_GE(serial.m_dwWriteTick - answered, 100U);
    }
}

TEST(Modem, OpensAndClosesThePort) {
    CSubstituteSerial serial;
    {
        CTestModem modem(&serial);
        serial.m_bOpens = FALSE;
        EXPECT_FALSE(modem.Open("nowhere"));
        EXPECT_FALSE(modem.IsOpen());
        modem.Close();
        serial.m_bOpens = TRUE;
        EXPECT_TRUE(modem.Open("port"));
        EXPECT_TRUE(modem.IsOpen());
        modem.SetTimeout(5);
        modem.Close();
        modem.Close();
        EXPECT_FALSE(modem.IsOpen());
        EXPECT_EQ(modem.m_dwTimeout, 5U);
        EXPECT_TRUE(modem.Open("port"));
        EXPECT_EQ(serial.m_nReferences, 2);
    }
    EXPECT_EQ(serial.m_calls, (Calls{"open nowhere", "open port", "close", "open port", "close"}));
    EXPECT_EQ(serial.m_nReferences, 1);
}

TEST(Modem, PassesSettingsToThePort) {
    CSubstituteSerial serial;
    CTestModem modem(&serial);
    modem.SetDtrRts(FALSE);
    modem.SetDtrRts(TRUE);
    EXPECT_TRUE(modem.SetDataFormat(9600, 1, 7, KEEP_SETTING));
    modem.SetFlowControl(_FLOW_RTSCTS);
    EXPECT_TRUE(modem.SendString("\x1B[A"));
    EXPECT_EQ(serial.m_calls, (Calls{"line 64 off", "line 4 off", "line 64 on", "line 4 on",
                                     "format 9600 1 7 4294967295", "flow 2", "write \x1B[A"}));
    DWORD baudRate = 0;
    EXPECT_TRUE(modem.GetBaudRate(baudRate));
    EXPECT_EQ(baudRate, 57600U);
    serial.m_bTakesSettings = FALSE;
    EXPECT_FALSE(modem.SetDataFormat(9600, 1, 7, 0));
    EXPECT_FALSE(modem.GetBaudRate(baudRate));
}

TEST(Modem, TellsWhatItsChannelCanBeWaitedFor) {
    CWaitableSerial serial;
    CTestModem modem(&serial);
    EXPECT_EQ(modem.GetReceiveHandle(), nullptr);
    EXPECT_EQ(modem.GetWriteRoom(), 0xFFFFFFFF);
    serial.m_dwRoom = 12;
    serial.m_dwQueued = 34;
    EXPECT_EQ(modem.GetQueuedOutput(), 0U);
    ASSERT_TRUE(modem.Open("port"));
    EXPECT_NE(modem.GetReceiveHandle(), nullptr);
    EXPECT_NE(modem.GetHangupHandle(), nullptr);
    EXPECT_NE(modem.GetProgressEvent(), nullptr);
    EXPECT_TRUE(modem.Drain(2000));
    EXPECT_EQ(modem.GetWriteRoom(), 12U);
    EXPECT_EQ(modem.GetQueuedOutput(), 34U);
    EXPECT_EQ(serial.m_nReferences, 2);

    CSubstituteSerial polled;
    CTestModem polledModem(&polled);
    ASSERT_TRUE(polledModem.Open("port"));
    EXPECT_EQ(polledModem.GetReceiveHandle(), nullptr);
    EXPECT_FALSE(polledModem.IsDeviceGone());
    EXPECT_FALSE(polledModem.Drain(2000));
}

TEST(Modem, FailsWithoutAPort) {
    CTestModem modem(nullptr);
    DWORD number = 5;
    std::string text;
    char byte;
    EXPECT_FALSE(modem.Open("port"));
    EXPECT_FALSE(modem.Write("a", 1));
    EXPECT_FALSE(modem.Read(&byte, 1, number));
    EXPECT_EQ(number, 0U);
    EXPECT_FALSE(modem.SetDataFormat(1, 2, 3, 4));
    EXPECT_FALSE(modem.GetBaudRate(number));
    modem.SetDtrRts(TRUE);
    modem.SetFlowControl(1);
    EXPECT_EQ(modem.GetWriteRoom(), 0xFFFFFFFF);
    EXPECT_EQ(modem.GetReceiveHandle(), nullptr);
    modem.SetTimeout(2);
    EXPECT_FALSE(modem.SendCommandGetResponse("AT\r", number, text));
    EXPECT_EQ(number, RESULT_NO_RESPONSE);
}

TEST(Deadline, CountsAcrossTheWrapOfTheTickCounter) {
    constexpr CDeadline acrossTheWrap(0xFFFFFF00, 0x200);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0xFFFFFF00), 0x200U);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0xFFFFFFFF), 0x101U);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0), 0x100U);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0xFF), 1U);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0x100), 0U);
    EXPECT_EQ(acrossTheWrap.RemainingAt(0x80000000), 0U);
    constexpr CDeadline aMonth(1000, 30U * 24 * 3600 * 1000);
    EXPECT_EQ(aMonth.RemainingAt(1000), 30U * 24 * 3600 * 1000);
    EXPECT_EQ(CDeadline(5, 0).RemainingAt(5), 0U);
}

} // namespace
