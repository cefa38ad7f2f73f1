// What phones do differently from lines.
#include "tests/telephony/TelephonyTest.h"

namespace {

using CPhoneTest = CTelephonyTest;

TEST_F(CPhoneTest, IsOpenedOnceAndClosedWhenAnyStepFails) {
    const struct {
        const char* function;
        const char* trace;
    } STEPS[] = {
        {"phoneInitialize",
         "1 CVTapi::MPhoneInitialize() - phoneInitialize() failed returning 0x9000001d\n"
         "1 CVTapi::PhoneOpen() - MPhoneInitialize() failed returning 0x9000001d\n"},
        {"phoneNegotiateAPIVersion",
         "1 CVTapi::MPhoneNegotiateAPIVersion() - phoneNegotiateAPIVersion() failed returning "
         "0x9000001d\n"
         "1 CVTapi::PhoneOpen() - MPhoneNegotiateAPIVersion() failed returning 0x9000001d\n"},
        {"phoneOpen", "1 CVTapi::PhoneOpen() - phoneOpen() failed returning 0x9000001d\n"},
        {"phoneSetStatusMessages",
         "1 CVTapi::PhoneOpen() - phoneSetStatusMessages() failed returning 0x9000001d\n"},
    };
    for (const auto& step : STEPS) {
        Fails(step.function, PHONEERR_OPERATIONUNAVAIL);
        EXPECT_EQ(m_tapi->PhoneOpen(0, 2), PHONEERR_OPERATIONUNAVAIL);
        EXPECT_EQ(TakeTrace(), step.trace);
    }
    EXPECT_TRUE(TakeCalls().ends_with("phoneOpen 21 0 65540 0 2\n"
                                      "phoneSetStatusMessages 22 14942342 8 2\nphoneClose 22\n"));
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), E_TAPI_PHONEOPEN);
    EXPECT_EQ(TakeTrace(), "1 CVTapi::PhoneOpen() - A phone has already been opened\n");
}

TEST_F(CPhoneTest, WaitsAndTellsItsClient) {
    CResult<PHONESTATUS> none;
    Fails("phoneGetStatus", PHONEERR_INVALPHONEHANDLE); // who is asked even without a phone
    EXPECT_EQ(m_tapi->PhoneGetStatus(none), PHONEERR_INVALPHONEHANDLE);
    EXPECT_EQ(TakeCalls(), "phoneGetStatus 0 [1100]\n");
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    DWORD messages = 0;
    m_tapi->PhoneSetUserCallback([](DWORD, DWORD, DWORD_PTR dwInstance, DWORD_PTR, DWORD_PTR,
                                    DWORD_PTR) { ++*reinterpret_cast<LPDWORD>(dwInstance); },
                                 reinterpret_cast<DWORD_PTR>(&messages));
    FakeTapi()->request = [](DWORD request, bool) {
        FakeTapi()->Reply(request, PHONEERR_INVALPHONEHANDLE, true);
    };
    EXPECT_EQ(m_tapi->PhoneSetVolume(1, 2, TRUE), PHONEERR_INVALPHONEHANDLE);
    EXPECT_EQ(messages, 1u);
    FakeTapi()->request = [](DWORD, bool) {};
    EXPECT_EQ(m_tapi->PhoneSetVolume(1, 2, TRUE), E_TAPI_TIMEOUT);
}

// Only a refusal makes a phone's record grow.
TEST_F(CPhoneTest, KeepsAnIncompleteRecord) {
    LONG result = 0;
    FakeTapi()->fill = [&](const std::string& call, LPVOID record) {
        static_cast<PHONECAPS*>(record)->dwNeededSize = 2000;
        return call.ends_with("[2000]") ? 0 : result;
    };
    CResult<PHONECAPS> incomplete;
    EXPECT_EQ(m_tapi->PhoneGetDevCaps(0, incomplete), 0);
    EXPECT_EQ(incomplete->dwTotalSize, 1144u);
    result = PHONEERR_STRUCTURETOOSMALL;
    CResult<PHONECAPS> complete;
    EXPECT_EQ(m_tapi->PhoneGetDevCaps(0, complete), 0);
    EXPECT_EQ(complete->dwTotalSize, 2000u);
}

} // namespace
