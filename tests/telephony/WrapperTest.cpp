// Wrappers of each kind, and those whose reports are worded oddly: what they ask the service, and
// what they trace of each of their failures.
#include "tests/telephony/TelephonyTest.h"

namespace {

int s_allocationsToFail = 0;

} // namespace

extern "C" LPVOID __real__Z14CoTaskMemAllocm(std::size_t cb);
extern "C" LPVOID __wrap__Z14CoTaskMemAllocm(std::size_t cb) {
    return s_allocationsToFail > 0 && s_allocationsToFail-- > 0 ? nullptr
                                                                : __real__Z14CoTaskMemAllocm(cb);
}

namespace {

using CWrapperTest = CTelephonyTest;

char buffer[4];
DWORD value;
HICON icon;

struct SRow {
    const char* name;
    LONG (*run)(ITapi& tapi);
    const char* call;
    std::vector<std::string> failures; // in the order in which they can happen

    std::string Function() const { return std::string(call, std::strcspn(call, " ")); }
    bool FailsFor(const char* what) const {
        return std::ranges::any_of(failures, [&](const std::string& text) {
            return text.find(what) != std::string::npos;
        });
    }
};

#define ROW(name, ...) #name, [](ITapi & tapi) { return tapi.name(__VA_ARGS__); }

// clang-format off
const SRow ROWS[] = {
    {ROW(LineBlindTransfer, "1", 49, TRUE), "lineBlindTransfer 13 '1' 49", {"No current call handle\n", "lineBlindTransfer() failed returning 0x80000048\n", "MLineWaitForReply() failed returning 0x80000048\n"}},
    {ROW(LineConfigDialog, 3, nullptr, "c"), "lineConfigDialog 3 null 'c'", {"MLineInitialize() failed returning 0x80000048\n", "LineConfigDialog() failed returning 0x80000048\n"}},
    {ROW(LineConfigDialogEdit, 3, nullptr, "c", "in", 2, CResult<VARSTRING>()), "lineConfigDialogEdit 3 null 'c' * 2 [1024]", {"MLineinitialize failed returning 0x80000048\n", "CoTaskMemAlloc() failure #1\n", "CoTaskMemAlloc() failure #2\n"}},
    {ROW(LineDrop, TRUE), "lineDrop 13 null 0", {"No current call handle\n", "lineDrop() failed returning 0x80000048\n", "MLineWaitForReply() failed returning 0x80000048\n"}},
    {ROW(LineGatherDigits, 1, buffer, 2, "#", 3, 4), "lineGatherDigits 13 1 * 2 '#' 3 4", {"No current call handle\n", "lineGatherDigits() failed returning 0x80000048\n"}},
    {ROW(LineGetAppPriority, "a", 1, 2, &value), "lineGetAppPriority 'a' 1 null 2 null", {"lineGetAppPriority() failed returning 0x80000048\n"}},
    {ROW(LineGetCallInfo, CResult<LINECALLINFO>()), "lineGetCallInfo 13 [1296]", {"No current call handle\n", "CoTaskMemAlloc() failure #1\n", "CoTaskMemAlloc() failure #2\n", "lineGetCallInfo() failed returning 0x80000048\n"}},
    {ROW(LineGetCountry, 49, CResult<LINECOUNTRYLIST>()), "lineGetCountry 49 65540 [1024]", {"CoTaskMemAlloc() failure #1\n", "CoTaskMemAlloc() failure #2\n", "lineGetCountry() failed returning 0x80000048\n"}},
    {ROW(LineGetDevCaps, 3, CResult<LINEDEVCAPS>()), "lineGetDevCaps 11 3 65540 0 [1240]", {"MLineInitialize() failed returning 0x80000048\n", "MLineGetDevCaps() failed returning 0x80000048\n"}},
    {ROW(LineGetID, CResult<VARSTRING>(), "c"), "lineGetID 12 0 13 4 [56] 'c'", {"No valid line handle\n", "CoTaskMemAlloc() failure #1\n", "CoTaskMemAlloc() failure #2\n", "lineGetID() failed returning 0x80000048\n"}},
    {ROW(LineRegisterRequestRecipient, 1, 2, TRUE), "lineRegisterRequestRecipient 11 1 2 1", {"MLineInitialize() failed returnint 0x80000048", "lineRegisterRequestRecipient() failed returning 0x80000048"}},
    {ROW(LineSetCallParams, 1, 2, 3, nullptr, TRUE), "lineSetCallParams 13 1 2 3 null", {"No current call handle", "lineSetCallParams() failed returning 0x80000048", "MLineWaitForReply() failed returning 0x80000048"}},
    {ROW(LineTranslateAddress, "1", 2, 3, CResult<LINETRANSLATEOUTPUT>()), "lineTranslateAddress 11 0 65540 '1' 2 3 [1040]", {"MLineInitialize() failed returning 0x80000048", "CoTaskMemAlloc() failure #1", "CoTaskMemAlloc() failure #2", "lineTranslateAddress() failed returning 0x80000048"}},
    {ROW(PhoneGetDevCaps, 3, CResult<PHONECAPS>()), "phoneGetDevCaps 21 3 65540 0 [1144]", {"MPhoneInitialize() failed returning 0x80000048", "MPhoneGetDevCaps() failed returning 0x80000048"}},
    {ROW(PhoneGetIcon, 3, "c", &icon), "phoneGetIcon 3 'c' *", {"MPhoneInitialize() failed returning 0x80000048", "phoneGetIcon() failed returing 0x80000048"}},
    {ROW(PhoneGetID, CResult<VARSTRING>(), "c"), "phoneGetID 22 [56] 'c'", {"No valid phone handle", "CoTaskMemAlloc() failure #1", "CoTaskMemAlloc() failure #2", "phoneGetID() failed returning 0x80000048"}},
    {ROW(PhoneGetRing, &value, &value), "phoneGetRing 22", {"No valid phone handle", "phoneGetRing() failed returing 0x80000048"}},
    {ROW(PhoneSetGain, 1, 2, TRUE), "phoneSetGain 22 1 2", {"No valid phone handle", "phoneSetGain() failed returing 0x80000048", "MPhonwWaitForReply() failed returning 0x80000048"}},
    {ROW(PhoneSetHookSwitch, 1, 2, TRUE), "phoneSetHookSwitch 22 1 2", {"No valid phone handle", "phoneSetHookSwitch() failed returing 0x80000048", "MPhoneWaitForReply() failed returning 0x80000048"}},
};
// clang-format on

// Each failure of a row in turn; the trace of all of them is what the row says.

void FailWhatIsNeeded(const SRow& row, ITapi& tapi) {
    auto& results = FakeTapi()->results;
    results["lineInitialize"] = results["phoneInitialize"] = {LINEERR_OPERATIONFAILED};
    const std::pair<const char*, LONG> NEEDS[] = {{"call handle", E_TAPI_NOCALL},
                                                  {"line handle", E_TAPI_NOLINE},
                                                  {"phone handle", E_TAPI_NOPHONE},
                                                  {"nitialize", LINEERR_OPERATIONFAILED}};
    for (const auto& [text, status] : NEEDS)
        if (row.FailsFor(text)) {
            EXPECT_EQ(row.run(tapi), status);
        }
    results.clear();
}

void FailMemory(const SRow& row, ITapi& tapi) {
    if (!row.FailsFor("CoTaskMemAlloc"))
        return;
    s_allocationsToFail = 1;
    EXPECT_EQ(row.run(tapi), E_TAPI_NOMEMORY);
    FakeTapi()->fill = [&](const std::string& call, LPVOID record) {
        static_cast<LPDWORD>(record)[1] = 0x7FFFFFFF; // needed
        return call[0] == 'p' ? PHONEERR_STRUCTURETOOSMALL : LINEERR_STRUCTURETOOSMALL;
    };
    EXPECT_EQ(row.run(tapi), E_TAPI_NOMEMORY);
    FakeTapi()->fill = nullptr;
}

void FailService(const SRow& row, ITapi& tapi) {
    FakeTapi()->results[row.Function()] = {LINEERR_OPERATIONFAILED};
    EXPECT_EQ(row.run(tapi), LINEERR_OPERATIONFAILED);
    if (!row.FailsFor("WaitForReply"))
        return;
    FakeTapi()->request = [](DWORD request, bool isPhone) {
        FakeTapi()->Reply(request, LINEERR_OPERATIONFAILED, isPhone);
    };
    EXPECT_EQ(row.run(tapi), LINEERR_OPERATIONFAILED);
    FakeTapi()->request = nullptr;
}

TEST_F(CWrapperTest, EachAsksTheServiceAndTracesItsFailures) {
    for (const SRow& row : ROWS) {
        SCOPED_TRACE(row.name);
        m_tapi.Reset(); // the services come up anew
        m_tapi = Make();
        FailWhatIsNeeded(row, *m_tapi.Get());
        std::vector<std::string> trace = std::exchange(FakeTapi()->trace, {});
        MakeCall();
        ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
        FailMemory(row, *m_tapi.Get());
        FailService(row, *m_tapi.Get());
        std::ranges::move(std::exchange(FakeTapi()->trace, {}), std::back_inserter(trace));
        // Operations inside it report as well.
        const std::string own = "1 CVTapi::" + std::string(row.name) + "() - ";
        std::erase_if(trace, [&](const std::string& line) { return !line.starts_with(own); });
        for (std::string& line : trace)
            line.erase(0, own.size());
        EXPECT_EQ(trace, row.failures);

        TakeCalls();
        EXPECT_EQ(row.run(*m_tapi.Get()), 0);
        EXPECT_EQ(TakeCalls(), std::string(row.call) + '\n');
        EXPECT_EQ(TakeTrace(), "");
    }
}

// Without settings the edit begins with those that the device has, as far as they can be believed.
TEST_F(CWrapperTest, EditsTheSettingsThatTheDeviceHas) {
    Fails("lineGetDevConfig", LINEERR_NODEVICE);
    EXPECT_EQ(m_tapi->LineConfigDialogEdit(3, nullptr, "c", nullptr, 0, CResult<VARSTRING>()),
              LINEERR_NODEVICE);
    EXPECT_EQ(
        TakeTrace(),
        "1 CVTapi::MLineGetDevConfig() - lineGetDevConfig() failed returning 0x80000042\n"
        "1 CVTapi::LineConfigDialogEdit() - mLineGetDevConfig failed returning 0x80000042\n\n");
    DWORD size = 5;
    FakeTapi()->fill = [&](const std::string&, LPVOID record) {
        static_cast<VARSTRING*>(record)->dwStringSize = size;
        static_cast<VARSTRING*>(record)->dwStringOffset = sizeof(VARSTRING);
        return 0;
    };
    for (const char* const call : {" * 5", " null 0"}) {
        CResult<VARSTRING> edited;
        EXPECT_EQ(m_tapi->LineConfigDialogEdit(3, nullptr, "c", nullptr, 0, edited), 0);
        EXPECT_TRUE(TakeCalls().ends_with("lineConfigDialogEdit 3 null 'c'" + std::string(call) +
                                          " [1024]\n"));
        size = 1001;
    }
}

} // namespace
