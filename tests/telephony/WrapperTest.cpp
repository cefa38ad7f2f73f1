// Wrappers of each kind: what they ask the service, and what they trace of each of their failures.
#include "tests/telephony/TelephonyTest.h"

#include <cstdlib>

namespace {

int s_allocationsToFail = 0;

} // namespace

// In place of the platform's, whose memory is malloc's too.
LPVOID CoTaskMemAlloc(std::size_t cb) {
    return s_allocationsToFail > 0 && s_allocationsToFail-- > 0 ? nullptr : std::malloc(cb);
}

namespace {

using CWrapperTest = CTelephonyTest;

char s_digits[4];
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
    {ROW(LineConfigDialog, 3, nullptr, "c"), "lineConfigDialog 3 null 'c'",
     "MLineInitialize() failed*\n\nLineConfigDialog() failed*\n\n"},
    {ROW(LineConfigDialogEdit, 3, nullptr, "c", nullptr, 0, CResult<VARSTRING>()),
     "lineGetDevConfig 3 [1024] 'c'\nlineConfigDialogEdit 3 null 'c' null 0 [1024]",
     "MLineinitialize failed*\n\nmLineGetDevConfig failed returning 0xa0000003\n\n"
     "mLineGetDevConfig failed returning 0xa0000003\n\nmLineGetDevConfig failed*\n\n"},
    {ROW(LineGatherDigits, 1, s_digits, 2, "#", 3, 4), "lineGatherDigits 13 1 * 2 '#' 3 4",
     "No current call handle\n\nlineGatherDigits() failed*\n\n"},
    {ROW(LineGetDevCaps, 3, CResult<LINEDEVCAPS>()), "lineGetDevCaps 11 3 65540 0 [1240]",
     "MLineInitialize() failed*\n\nMLineGetDevCaps() failed returning 0xa0000003\n\n"
     "MLineGetDevCaps() failed returning 0xa0000003\n\nMLineGetDevCaps() failed*\n\n"},
    {ROW(LineGetID, CResult<VARSTRING>(), "c"), "lineGetID 12 0 13 4 [56] 'c'",
     "No valid line handle\n\nCoTaskMemAlloc() failure #1\n\nCoTaskMemAlloc() failure #2\n\n"
     "lineGetID() failed*\n\n"},
    {ROW(LineRegisterRequestRecipient, 1, 2, TRUE), "lineRegisterRequestRecipient 11 1 2 1",
     "MLineInitialize() failed returnint 0x80000048\nlineRegisterRequestRecipient() failed*\n"},
    {ROW(LineSetCallParams, 1, 2, 3, nullptr, TRUE), "lineSetCallParams 13 1 2 3 null",
     "No current call handle\nlineSetCallParams() failed*\nMLineWaitForReply() failed*\n"},
    {ROW(PhoneGetIcon, 3, "c", &s_icon), "phoneGetIcon 3 'c' *",
     "MPhoneInitialize() failed*\nphoneGetIcon() failed returing 0x80000048\n"},
    {ROW(PhoneGetID, CResult<VARSTRING>(), "c"), "phoneGetID 22 [56] 'c'",
     "No valid phone handle\nCoTaskMemAlloc() failure #1\nCoTaskMemAlloc() failure #2\n"
     "phoneGetID() failed*\n"},
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
        const auto run = [&](bool isFailure) {
            Take();
            const LONG status = row.run(*m_tapi.Get());
            const std::string record = Take();
            const std::size_t at = record.find(own);
            EXPECT_EQ(status < 0, at != std::string::npos);
            failures += isFailure && at != std::string::npos ? record.substr(at + own.size()) : "";
            return record;
        };
        auto& results = m_service.results;
        results["lineInitialize"] = results["phoneInitialize"] = {LINEERR_OPERATIONFAILED};
        run(true);
        results.clear();
        MakeCall();
        ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
        EXPECT_EQ(run(false), std::string(row.call) + '\n');

        s_allocationsToFail = 1;
        run(true);
        s_allocationsToFail = 0;
        m_service.fill = [](const std::string& call, LPVOID record) {
            static_cast<LPDWORD>(record)[1] = 0x7FFFFFFF; // needed
            return call[0] == 'p' ? PHONEERR_STRUCTURETOOSMALL : LINEERR_STRUCTURETOOSMALL;
        };
        run(true);
        m_service.fill = nullptr;
        results[std::string(row.call, std::strcspn(row.call, " "))] = {LINEERR_OPERATIONFAILED};
        run(true);
        m_service.request = [&](DWORD request, bool isPhone) {
            m_service.Reply(request, LINEERR_OPERATIONFAILED, isPhone);
        };
        run(true);
        m_service.request = reply;
        EXPECT_EQ(failures, row.failures);
    }
}

// Without settings the edit begins with those that the device has, as far as they can be believed.
TEST_F(CWrapperTest, EditsTheSettingsThatTheDeviceHas) {
    DWORD size = 5;
    m_service.fill = [&](const std::string&, LPVOID record) {
        static_cast<VARSTRING*>(record)->dwStringSize = size;
        static_cast<VARSTRING*>(record)->dwStringOffset = sizeof(VARSTRING);
        return 0;
    };
    for (const char* const call : {" * 5", " null 0"}) {
        CResult<VARSTRING> edited;
        EXPECT_EQ(m_tapi->LineConfigDialogEdit(3, nullptr, "c", nullptr, 0, edited), 0);
        EXPECT_TRUE(
            Take().ends_with("lineConfigDialogEdit 3 null 'c'" + std::string(call) + " [1024]\n"));
        size = 1001;
    }
}

} // namespace
