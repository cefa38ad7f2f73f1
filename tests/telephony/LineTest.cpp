// The states of a line, its call and a phone, the waits for replies, the growth of results.
#include "tests/telephony/TelephonyTest.h"

#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

namespace {

using CLineTest = CTelephonyTest;

constexpr DWORD OWNER = LINECALLPRIVILEGE_OWNER;

TEST_F(CLineTest, IsOpenedOnceAndClosedWhenAnyStepFails) {
    OpenLine();
    EXPECT_EQ(TakeCalls(),
              "lineInitialize * null\nlineNegotiateAPIVersion 11 0 65540 65540 *\n"
              "lineOpen 11 0 65540 0 4 16 null\nlineSetStatusMessages 12 17041102 0\n");
    EXPECT_EQ(m_tapi->LineOpen(1, OWNER, 16), E_TAPI_LINEOPEN);
    EXPECT_EQ(m_tapi->LineGetID(CResult<VARSTRING>(), "c"), 0);
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(TakeCalls(), "lineGetID 12 0 0 1 [56] 'c'\nlineClose 12\n");
    EXPECT_EQ(TakeTrace(), "1 CVTapi::LineOpen() - A line has already been opened\n");

    // clang-format off
    const struct {
        const char* function;
        const char* last; // of the calls
        std::vector<std::string> failures;
    } STEPS[] = {
        {"lineNegotiateAPIVersion", "lineNegotiateAPIVersion 11 0 65540 65540 *\n", {"MLineNegotiateAPIVersion() - lineNegotiateAPIVersion() failed", "LineOpen() - MLineNegotiateAPIVersion() faile"}},
        {"lineOpen", "lineOpen 11 0 65540 0 6 16 null\n", {"LineOpen() - lineOpen() failed"}},
        {"lineSetStatusMessages", "lineClose 12\n", {"LineOpen() - lineSetStatusMessage() failed"}},
        {"lineGetNewCalls", "lineClose 12\n", {"LineGetNewCalls() - lineGetNewCalls() failed", "LinOpen() - MLineGetNewCalls() failed"}},
        {"phoneInitialize", "phoneInitialize * null\n", {"MPhoneInitialize() - phoneInitialize() failed", "PhoneOpen() - MPhoneInitialize() failed"}},
        {"phoneNegotiateAPIVersion", "65540 *\n", {"MPhoneNegotiateAPIVersion() - phoneNegotiateAPIVersion() failed", "PhoneOpen() - MPhoneNegotiateAPIVersion() failed"}},
        {"phoneOpen", "phoneOpen 21 0 65540 0 2\n", {"PhoneOpen() - phoneOpen() failed"}},
        {"phoneSetStatusMessages", "phoneSetStatusMessages 22 14942342 8 2\nphoneClose 22\n", {"PhoneOpen() - phoneSetStatusMessages() failed"}},
    };
    // clang-format on
    for (const auto& step : STEPS) {
        SCOPED_TRACE(step.function);
        Fails(step.function, LINEERR_OPERATIONFAILED);
        EXPECT_EQ(step.function[0] == 'p' ? m_tapi->PhoneOpen(0, 2) : m_tapi->LineOpen(0, 6, 16),
                  LINEERR_OPERATIONFAILED);
        EXPECT_TRUE(TakeCalls().ends_with(step.last));
        std::string trace;
        for (const std::string& failure : step.failures)
            trace += "1 CVTapi::" + failure + " returning 0x80000048\n";
        EXPECT_EQ(TakeTrace(), trace);
        EXPECT_EQ(m_tapi->LineGetLineDevStatus(CResult<LINEDEVSTATUS>()), E_TAPI_NOLINE);
        EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, FALSE), E_TAPI_NOPHONE);
        TakeTrace();
    }
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), E_TAPI_PHONEOPEN);
    EXPECT_EQ(TakeTrace(), "1 CVTapi::PhoneOpen() - A phone has already been opened\n");
}

TEST_F(CLineTest, WithMonitorPrivilegeTakesTheFirstCallThatIsThere) {
    LINECALLLIST head = {0, 0, 0, 3, 12, sizeof(LINECALLLIST) + 1};
    FakeTapi()->fill = [&](const std::string& call, LPVOID record) {
        EXPECT_EQ(call, "lineGetNewCalls 12 0 1 [1024]");
        head.dwTotalSize = 0xFFFFFFFF;
        const DWORD handles[] = {31, 32, 33};
        std::memcpy(record, &head, sizeof head);
        std::memcpy(static_cast<BYTE*>(record) + sizeof head + 1, handles, sizeof handles);
        return 0;
    };
    OpenLine(LINECALLPRIVILEGE_MONITOR);
    EXPECT_TRUE(TakeCalls().ends_with("]\nlineDeallocateCall 32\nlineDeallocateCall 33\n"));
    EXPECT_EQ(TakeTrace(), "8 CVTapi::LineGetNewCalls() - Active call found\n\n");
    EXPECT_EQ(m_tapi->LineHandoff("x", 1), 0);
    EXPECT_EQ(TakeCalls(), "lineHandoff 31 'x' 1\n");

    // Lists that claim what is not there.
    for (const auto& [entries, size, offset] :
         {std::array<DWORD, 3>{5, 0xFFFFFFFC, 24}, {5, 1012, 24}, {5, 4, 0xFFFFFFFF}, {9, 3, 24}}) {
        m_tapi->LineClose();
        head = {0, 0, 0, entries, size, offset};
        OpenLine(LINECALLPRIVILEGE_MONITOR);
        EXPECT_EQ(TakeTrace(), "8 CVTapi::LineGetNewCalls() - No active calls found\n\n");
        EXPECT_EQ(m_tapi->LineHandoff("x", 1), E_TAPI_NOCALL);
        TakeTrace();
    }
}

// A client's callback: what it is told.
std::string s_noted;
void Note(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR dwParam1,
          DWORD_PTR dwParam2, DWORD_PTR) {
    for (const DWORD_PTR value : {DWORD_PTR{hDevice}, DWORD_PTR{dwMessage}, dwInstance, dwParam1})
        s_noted += std::to_string(value) + ' ';
    s_noted += std::to_string(dwParam2) + '\n';
}

TEST_F(CLineTest, FollowsTheStatesOfItsCall) {
    s_noted.clear();
    m_tapi->LineSetUserCallback(Note, 7);
    OpenLine();
    EXPECT_EQ(m_tapi->LineMakeCall("ATD1", 49, nullptr, TRUE), 0);
    EXPECT_TRUE(TakeCalls().ends_with("lineMakeCall 12 'ATD1' 49 null\n"));
    EXPECT_EQ(std::exchange(s_noted, {}), "0 12 7 1000 0\n");
    EXPECT_EQ(m_tapi->LineMakeCall("1", 0, nullptr, TRUE), E_TAPI_CALLINPROGRESS);
    EXPECT_EQ(TakeTrace(),
              "8 CVTapi::LineMakeCall() - A call is already in progress on this line\n\n");

    // States arrive in the next wait, before its own reply.
    Fails("lineDeallocateCall", LINEERR_OPERATIONFAILED);
    FakeTapi()->CallState(50, LINECALLSTATE_CONNECTED);
    FakeTapi()->CallState(50, LINECALLSTATE_PROCEEDING);
    FakeTapi()->CallState(50, LINECALLSTATE_DISCONNECTED);
    EXPECT_EQ(m_tapi->LineHold(TRUE), 0);
    EXPECT_EQ(TakeCalls(), "lineHold 13\nlineDrop 50 null 0\n");
    FakeTapi()->CallState(50, LINECALLSTATE_IDLE);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), 0);
    EXPECT_EQ(TakeCalls(), "lineUnhold 50\nlineDeallocateCall 50\n");
    EXPECT_EQ(TakeTrace(),
              "1 CVTapi::MLineCallback() - lineDeallocateCall() failed returning 0x80000048\n");
    EXPECT_EQ(m_tapi->LineDrop(FALSE), E_TAPI_NOCALL);

    // A message of a line that is closed by now, dispatched by another wait, brings no call.
    FakeTapi()->CallState(51, LINECALLSTATE_OFFERING);
    m_tapi->LineClose();
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, TRUE), 0);
    EXPECT_EQ(m_tapi->LineDrop(FALSE), E_TAPI_NOCALL);
    Fails("lineMakeCall", LINEERR_INVALLINEHANDLE);
    TakeTrace();
    EXPECT_EQ(m_tapi->LineMakeCall("1", 0, nullptr, FALSE), LINEERR_INVALLINEHANDLE);
    EXPECT_EQ(TakeTrace(),
              "1 CVTapi::LineMakeCall() - lineMakeCall() failed returning 0x8000002b\n");
}

TEST_F(CLineTest, WaitsForTheReplyOfItsOwnRequest) {
    MakeCall();
    FakeTapi()->request = [](DWORD request, bool) {
        FakeTapi()->Reply(request - 1, LINEERR_INUSE);
        FakeTapi()->Reply(request, LINEERR_CALLUNAVAIL);
        FakeTapi()->Reply(request, LINEERR_NOMEM);
    };
    EXPECT_EQ(m_tapi->LineDial("2", 0, TRUE), LINEERR_CALLUNAVAIL);

    // Nothing comes in time; what comes late is nobody's, for the next wait either.
    DWORD late = 0;
    FakeTapi()->request = [&](DWORD request, bool) { late = request; };
    const LONG started = m_tapi->LineAnswer(FALSE);
    EXPECT_EQ(started, static_cast<LONG>(late));
    TakeTrace();
    EXPECT_EQ(m_tapi->LineAnswer(TRUE), E_TAPI_TIMEOUT);
    EXPECT_EQ(TakeTrace(), "1 CVTapi::MLineWaitForReply() - Function timeout\n"
                           "1 CVTapi::LineAnswer() - MLineWaitForReply() failed returning "
                           "0xa000000b\n\n");
    FakeTapi()->Reply(late, LINEERR_INUSE);
    FakeTapi()->request = [](DWORD request, bool isPhone) {
        FakeTapi()->Reply(request, isPhone ? 9 : LINEERR_NODEVICE, isPhone);
    };
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    m_tapi->PhoneSetUserCallback(Note, 8);
    s_noted.clear();
    const std::string phoneRequest = std::to_string(FakeTapi()->dwNextRequest);
    EXPECT_EQ(m_tapi->PhoneSetVolume(1, 2, TRUE), 9);
    EXPECT_EQ(s_noted, "0 3 8 " + phoneRequest + " 9\n");
    EXPECT_EQ(m_tapi->LineAnswer(TRUE), LINEERR_NODEVICE);

    // A request that is over at once.
    FakeTapi()->results["lineHold"] = {0};
    EXPECT_EQ(m_tapi->LineHold(TRUE), 0);

    FakeTapi()->request = [](DWORD, bool) {};
    EXPECT_EQ(m_tapi->PhoneSetVolume(1, 2, TRUE), E_TAPI_TIMEOUT);
}

using Work = std::function<void()>;
void WorkInside(DWORD, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR, DWORD_PTR, DWORD_PTR) {
    if (dwMessage == LINE_CALLSTATE)
        (*reinterpret_cast<const Work*>(dwInstance))();
}

TEST_F(CLineTest, AWaitInsideAWaitEndsBoth) {
    ASSERT_EQ(m_tapi->PhoneOpen(0, 1), 0);
    MakeCall();
    Work work = [&] { EXPECT_EQ(m_tapi->LineHold(TRUE), E_TAPI_REENTERED); };
    m_tapi->LineSetUserCallback(WorkInside, reinterpret_cast<DWORD_PTR>(&work));
    FakeTapi()->CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), E_TAPI_REENTERED);
    const std::string ABORTED =
        "1 CVTapi::MLineWaitForReply() - Reentrancy caused function to abort\n1 CVTapi::";
    const std::string FAILED = "() - MLineWaitForReply() failed returning 0xa000000c\n";
    EXPECT_EQ(TakeTrace(), ABORTED + "LineHold" + FAILED + '\n' + ABORTED + "LineUnhold" + FAILED);

    // A wait for the phone is another matter.
    work = [&] { EXPECT_EQ(m_tapi->PhoneSetGain(1, 2, TRUE), 0); };
    FakeTapi()->CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), 0);
    EXPECT_EQ(TakeCalls(), "lineUnhold 13\nlineHold 13\nlineUnhold 13\nphoneSetGain 22 1 2\n");
}

TEST_F(CLineTest, GrowsAResultOnceByWhatIsNeeded) {
    constexpr LONG SMALL = LINEERR_STRUCTURETOOSMALL;
    const struct {
        LONG answer;
        DWORD needed[2];
        LONG status;
        DWORD total;
        std::size_t calls;
    } ROWS[] = {
        {0, {1240, 0}, 0, 1240, 1},
        {0, {3000, 4000}, 0, 3000, 2},
        {SMALL, {3000, 4000}, SMALL, 0, 2},
        {SMALL, {0, 0}, SMALL, 0, 1},
        {SMALL, {7, 0}, SMALL, 0, 1},
        {SMALL, {1240, 0}, SMALL, 0, 1},
        {0, {TAPI_RESULT_MAX + 1, 0}, E_TAPI_NOMEMORY, 0, 1},
        {0, {0xFFFFFFFF, 0}, E_TAPI_NOMEMORY, 0, 1},
    };
    OpenLine();
    for (const auto& row : ROWS) {
        SCOPED_TRACE(&row - ROWS);
        FakeTapi()->fill = [&](const std::string& call, LPVOID record) {
            auto& caps = *static_cast<LINEDEVCAPS*>(record);
            EXPECT_EQ(std::exchange(caps.dwNumAddresses, 9), 0u) << "cleared each time";
            caps.dwNeededSize = row.needed[call.ends_with("[1240]") ? 0 : 1];
            caps.dwTotalSize = 0x7FFFFFFF;
            return row.answer;
        };
        FakeTapi()->calls.clear();
        TakeTrace();
        CResult<LINEDEVCAPS> caps;
        EXPECT_EQ(m_tapi->LineGetDevCaps(4, caps), row.status);
        EXPECT_EQ(caps.Get() ? caps->dwTotalSize : 0, row.total);
        EXPECT_EQ(FakeTapi()->calls.size(), row.calls);
        EXPECT_TRUE(FakeTapi()->calls.back().ends_with(row.calls == 2 ? "[3000]" : "[1240]"));
    }
    EXPECT_EQ(TakeTrace(), "1 CVTapi::MLineGetDevCaps() - CoTaskMemAlloc() failure #2\n"
                           "1 CVTapi::LineGetDevCaps() - MLineGetDevCaps() failed returning "
                           "0xa0000003\n\n");
}

// Only a refusal makes a phone's records grow; the service is asked even without a phone.
TEST_F(CLineTest, KeepsAPhonesIncompleteRecords) {
    for (const LONG refusal : {0, PHONEERR_STRUCTURETOOSMALL}) {
        FakeTapi()->fill = [&](const std::string& call, LPVOID record) {
            static_cast<PHONESTATUS*>(record)->dwNeededSize = 2000;
            return call.ends_with("[2000]") ? 0 : refusal;
        };
        CResult<PHONESTATUS> status;
        EXPECT_EQ(m_tapi->PhoneGetStatus(status), 0);
        EXPECT_EQ(status->dwTotalSize, refusal ? 2000u : 1100u);
        CResult<PHONECAPS> caps;
        EXPECT_EQ(m_tapi->PhoneGetDevCaps(0, caps), 0);
        EXPECT_EQ(caps->dwTotalSize, refusal ? 2000u : 1144u);
    }
    EXPECT_TRUE(TakeCalls().starts_with("phoneGetStatus 0 [1100]\n"));
}

TEST_F(CLineTest, TheServiceComesUpOnceAndGoesWithTheLastObject) {
    FakeTapi()->results["lineInitialize"] = {LINEERR_REINIT, 5};
    OpenLine();
    ASSERT_EQ(m_tapi->PhoneOpen(0, 1), 0);
    CInterfacePtr<ITapi> other = Make();
    ASSERT_EQ(other->LineOpen(1, OWNER, 16), 0);
    const std::string calls = TakeCalls();
    const std::string once = "lineInitialize * null\n";
    EXPECT_TRUE(calls.starts_with(once + once + "lineNegotiate"));
    EXPECT_EQ(calls.rfind(once), once.size());

    // What an object leaves open is closed, and its messages find nobody.
    const DWORD_PTR gone = FakeTapi()->dwLineInstance;
    other.Reset();
    EXPECT_EQ(TakeCalls(), "lineClose 12\n");
    TakeTrace();
    FakeTapi()->post({false, 13, LINE_CALLSTATE, gone, LINECALLSTATE_OFFERING, 0});
    FakeTapi()->post({false, 13, LINE_CALLSTATE, 0, LINECALLSTATE_OFFERING, 0});
    EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, TRUE), 0);
    TakeCalls();

    Fails("phoneShutdown", PHONEERR_OPERATIONUNAVAIL);
    Fails("lineShutdown", LINEERR_OPERATIONFAILED);
    EXPECT_EQ(FakeTapi()->loads, 1);
    m_tapi.Reset();
    EXPECT_EQ(TakeCalls(), "phoneShutdown 21\nlineShutdown 11\n");
    EXPECT_EQ(TakeTrace(),
              "1 CVTapi::MPhoneShutdown() - phoneShutdown() failed returning 0x9000001d\n"
              "1 CVTapi::MLineShutdown() - lineShutdown() failed returning 0x80000048\n");
    EXPECT_EQ(FakeTapi()->loads, 0);
    EXPECT_EQ(g_lTapiObjects, 0);
}

// Operations of an object exclude each other; objects come and go on any thread.
TEST_F(CLineTest, IsUsedByManyThreads) {
    OpenLine();
    std::vector<std::thread> threads;
    for (DWORD index = 0; index < 4; ++index)
        threads.emplace_back([this] {
            for (int round = 0; round < 50; ++round) {
                const CInterfacePtr<ITapi> own = Make();
                EXPECT_TRUE(own.Query<ITapi>(IID_ITapi));
                EXPECT_EQ(m_tapi->LineSetUserCallback(nullptr, 0), 0);
                EXPECT_EQ(m_tapi->LineDrop(FALSE), E_TAPI_NOCALL);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(g_lTapiObjects, 1);
}

} // namespace
