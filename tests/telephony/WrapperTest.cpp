// Wrappers of each kind: what they ask the service, and what they trace of each of their failures.
#include "tests/telephony/TelephonyTest.h"

namespace {

using CWrapperTest = CTelephonyTest;

HICON s_icon;

struct Row {
    LONG (*run)(ITapi& tapi);
    std::string call;
    std::string failures; // in the order in which they can happen
};

const Row kRows[] = {
    {[](ITapi& tapi) { return tapi.LineDrop(TRUE); }, "lineDrop 13 null 0\n",
     "! LineDrop() - No current call handle\n\n"
     "lineDrop 13 null 0\n! LineDrop() - lineDrop() failed*\n\n"
     "lineDrop 13 null 0\n! LineDrop() - MLineWaitForReply() failed*\n\n"},
    {[](ITapi& tapi) { return tapi.LineGetID(CResult<VARSTRING>(), "c"); },
     "lineGetID 12 0 13 4 [56] 'c'\n",
     "! LineGetID() - No valid line handle\n\n"
     "lineGetID 12 0 13 4 [56] 'c'\n! LineGetID() - lineGetID() failed*\n\n"
     "lineGetID 12 0 13 4 [56] 'c'\n"},
    {[](ITapi& tapi) { return tapi.PhoneGetIcon(3, "c", &s_icon); }, "phoneGetIcon 3 'c' *\n",
     "phoneInitialize * null\n! MPhoneInitialize() - phoneInitialize() failed*\n"
     "! PhoneGetIcon() - MPhoneInitialize() failed*\n"
     "phoneGetIcon 3 'c' *\n! PhoneGetIcon() - phoneGetIcon() failed returing 0x80000048\n"
     "phoneGetIcon 3 'c' *\n"},
    {[](ITapi& tapi) { return tapi.PhoneSetGain(1, 2, TRUE); }, "phoneSetGain 22 1 2\n",
     "! PhoneSetGain() - No valid phone handle\n"
     "phoneSetGain 22 1 2\n! PhoneSetGain() - phoneSetGain() failed returing 0x80000048\n"
     "phoneSetGain 22 1 2\n! PhoneSetGain() - MPhonwWaitForReply() failed*\n"},
};

TEST_F(CWrapperTest, EachAsksTheServiceAndTracesItsFailures) {
    const auto reply = m_service.request;
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.call);
        m_tapi.Reset(); // the services come up anew
        m_tapi = Make();
        Take();
        m_service.results["phoneInitialize"] = {LINEERR_OPERATIONFAILED};
        EXPECT_LT(row.run(*m_tapi.Get()), 0);
        const std::string missing = Take();
        m_service.results.clear();
        MakeCall();
        ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
        Take();
        EXPECT_GE(row.run(*m_tapi.Get()), 0);
        EXPECT_EQ(Take(), row.call);

        m_service.results[row.call.substr(0, row.call.find(' '))] = {LINEERR_OPERATIONFAILED};
        EXPECT_LT(row.run(*m_tapi.Get()), 0);
        m_service.request = [&](DWORD request, bool isPhone) {
            m_service.Reply(request, LINEERR_OPERATIONFAILED, isPhone);
        };
        row.run(*m_tapi.Get());
        m_service.request = reply;
        EXPECT_EQ(missing + Take(), row.failures);
    }
}

// Many arguments, which could change places.
TEST_F(CWrapperTest, HandsItsArgumentsOnInTheirOrder) {
    char digits[4];
    MakeCall();
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    Take();
    m_tapi->LineConfigDialog(3, nullptr, "c");
    m_tapi->LineGatherDigits(1, digits, 2, "#", 3, 4);
    m_tapi->LineRegisterRequestRecipient(1, 2, TRUE);
    m_tapi->LineSetCallParams(1, 2, 3, nullptr, TRUE);
    m_tapi->PhoneGetID(CResult<VARSTRING>(), "c");
    EXPECT_EQ(Take(), "lineConfigDialog 3 null 'c'\nlineGatherDigits 13 1 * 2 '#' 3 4\n"
                      "lineRegisterRequestRecipient 11 1 2 1\nlineSetCallParams 13 1 2 3 null\n"
                      "phoneGetID 22 [56] 'c'\n");
}

// Without settings the edit begins with those that the device has.
TEST_F(CWrapperTest, EditsTheSettingsThatTheDeviceHas) {
    m_service.fill = [](const std::string&, LPVOID record) {
        static_cast<VARSTRING*>(record)->dwStringSize = 5;
        static_cast<VARSTRING*>(record)->dwStringOffset = sizeof(VARSTRING);
        return 0;
    };
    EXPECT_EQ(m_tapi->LineConfigDialogEdit(3, nullptr, "c", nullptr, 0, CResult<VARSTRING>()), 0);
    EXPECT_TRUE(Take().ends_with("lineConfigDialogEdit 3 null 'c' * 5 [1024]\n"));
}

TEST_F(CWrapperTest, FailWithoutTheLibraryOrTheirFunction) {
    m_service.missing = "library";
    EXPECT_EQ(CVTapi::LoadTapi(), 0);
    EXPECT_EQ(m_tapi->LineOpen(0, 4, 16), E_TAPI_NOLIBRARY);
    m_service.missing = "lineHold";
    MakeCall();
    EXPECT_EQ(m_tapi->LineHold(FALSE), E_TAPI_FAILED);
}

} // namespace
