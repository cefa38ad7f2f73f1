// Wrappers of each kind: what they ask the service, and what they trace of each of their failures.
#include "tests/telephony/TelephonyTest.h"

namespace {

using CWrapperTest = CTelephonyTest;

HICON s_icon;

struct Row {
    const char* name;
    LONG (*run)(ITapi& tapi);
    const char* call;
    const char* failures; // in the order in which they can happen
};

#define ROW(name, ...) #name, [](ITapi & tapi) { return tapi.name(__VA_ARGS__); }

const Row kRows[] = {
    {ROW(LineDrop, TRUE), "lineDrop 13 null 0",
     "No current call handle\n\nlineDrop() failed*\n\nMLineWaitForReply() failed*\n\n"},
    {ROW(LineConfigDialogEdit, 3, nullptr, "c", nullptr, 0, CResult<VARSTRING>()),
     "lineGetDevConfig 3 [1024] 'c'\nlineConfigDialogEdit 3 null 'c' null 0 [1024]",
     "MLineinitialize failed*\n\nmLineGetDevConfig failed returning "
     "0xa0000003\n\nmLineGetDevConfig failed*\n\n"},
    {ROW(LineGetID, CResult<VARSTRING>(), "c"), "lineGetID 12 0 13 4 [56] 'c'",
     "No valid line handle\n\nCoTaskMemAlloc() failure #2\n\n"
     "lineGetID() failed*\n\n"},
    {ROW(PhoneGetIcon, 3, "c", &s_icon), "phoneGetIcon 3 'c' *",
     "MPhoneInitialize() failed*\nphoneGetIcon() failed returing 0x80000048\n"},
    {ROW(PhoneSetGain, 1, 2, TRUE), "phoneSetGain 22 1 2",
     "No valid phone handle\nphoneSetGain() failed returing 0x80000048\n"
     "MPhonwWaitForReply() failed*\n"},
};

TEST_F(CWrapperTest, EachAsksTheServiceAndTracesItsFailures) {
    const auto reply = m_service.request;
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        m_tapi.Reset(); // the services come up anew
        m_tapi = Make();
        const std::string own = "! " + std::string(row.name) + "() - ";
        std::string failures;
        // Operations inside it report as well.
        const auto fail = [&] {
            Take();
            const LONG status = row.run(*m_tapi.Get());
            const std::string record = Take();
            const std::size_t at = record.find(own);
            EXPECT_EQ(status < 0, at != std::string::npos) << record;
            failures += at != std::string::npos ? record.substr(at + own.size()) : "";
        };
        auto& results = m_service.results;
        results["lineInitialize"] = results["phoneInitialize"] = {LINEERR_OPERATIONFAILED};
        fail();
        results.clear();
        MakeCall();
        ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
        Take();
        EXPECT_GE(row.run(*m_tapi.Get()), 0);
        EXPECT_EQ(Take(), std::string(row.call) + '\n');

        m_service.fill = [](const std::string& call, LPVOID record) {
            static_cast<LPDWORD>(record)[1] = 0x7FFFFFFF; // needed
            return call[0] == 'p' ? PHONEERR_STRUCTURETOOSMALL : LINEERR_STRUCTURETOOSMALL;
        };
        fail();
        m_service.fill = nullptr;
        results[std::string(row.call, std::strcspn(row.call, " "))] = {LINEERR_OPERATIONFAILED};
        fail();
        m_service.request = [&](DWORD request, bool isPhone) {
            m_service.Reply(request, LINEERR_OPERATIONFAILED, isPhone);
        };
        fail();
        m_service.request = reply;
        EXPECT_EQ(failures, row.failures);
    }
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
