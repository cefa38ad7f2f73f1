// The states of a line and its call, the waits for replies, the growth of results.
#include "tests/telephony/TelephonyTest.h"

#include "platform/Clock.h"
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
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(TakeCalls(), "lineClose 12\n");
    EXPECT_EQ(TakeTrace(), "1 CVTapi::LineOpen() - A line has already been opened\n");

    const struct {
        const char* function;
        const char* last;
        const char* trace;
    } STEPS[] = {
        {"lineNegotiateAPIVersion", "lineNegotiateAPIVersion 11 0 65540 65540 *\n",
         "1 CVTapi::MLineNegotiateAPIVersion() - lineNegotiateAPIVersion() failed returning "
         "0x80000048\n1 CVTapi::LineOpen() - MLineNegotiateAPIVersion() faile returning "
         "0x80000048\n"},
        {"lineOpen", "lineOpen 11 0 65540 0 6 16 null\n",
         "1 CVTapi::LineOpen() - lineOpen() failed returning 0x80000048\n"},
        {"lineSetStatusMessages", "lineClose 12\n",
         "1 CVTapi::LineOpen() - lineSetStatusMessage() failed returning 0x80000048\n"},
        {"lineGetNewCalls", "lineClose 12\n",
         "1 CVTapi::LineGetNewCalls() - lineGetNewCalls() failed returning 0x80000048\n"
         "1 CVTapi::LinOpen() - MLineGetNewCalls() failed returning 0x80000048\n"},
    };
    for (const auto& step : STEPS) {
        Fails(step.function, LINEERR_OPERATIONFAILED);
        EXPECT_EQ(m_tapi->LineOpen(0, 6, 16), LINEERR_OPERATIONFAILED);
        EXPECT_TRUE(TakeCalls().ends_with(step.last)) << step.function;
        EXPECT_EQ(TakeTrace(), step.trace);
        CResult<LINEDEVSTATUS> status;
        EXPECT_EQ(m_tapi->LineGetLineDevStatus(status), E_TAPI_NOLINE);
        TakeTrace();
    }
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

TEST_F(CLineTest, FollowsTheStatesOfItsCall) {
    std::vector<std::string> seen;
    m_tapi->LineSetUserCallback(
        [](DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR dwParam1, DWORD_PTR,
           DWORD_PTR) {
            reinterpret_cast<std::vector<std::string>*>(dwInstance)
                ->push_back(std::to_string(hDevice) + ' ' + std::to_string(dwMessage) + ' ' +
                            std::to_string(dwParam1));
        },
        reinterpret_cast<DWORD_PTR>(&seen));
    OpenLine();
    EXPECT_EQ(m_tapi->LineMakeCall("ATD1", 49, nullptr, TRUE), 0);
    EXPECT_TRUE(TakeCalls().ends_with("lineMakeCall 12 'ATD1' 49 null\n"));
    EXPECT_EQ(seen, std::vector<std::string>{"0 12 1000"});
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

    // A message of a line that is closed by now brings no call.
    FakeTapi()->CallState(51, LINECALLSTATE_OFFERING);
    m_tapi->LineClose();
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
    FakeTapi()->request = [&](DWORD request, bool) {
        FakeTapi()->Reply(late, LINEERR_INUSE);
        FakeTapi()->Reply(request, LINEERR_NODEVICE);
    };
    EXPECT_EQ(m_tapi->LineAnswer(TRUE), LINEERR_NODEVICE);

    // A request that is over at once.
    FakeTapi()->results["lineHold"] = {0};
    EXPECT_EQ(m_tapi->LineHold(TRUE), 0);
}

struct SNested {
    ITapi* tapi;
    bool isPhone;
    LONG lResult;
};

void WaitInside(DWORD, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR, DWORD_PTR, DWORD_PTR) {
    auto& nested = *reinterpret_cast<SNested*>(dwInstance);
    if (dwMessage == LINE_CALLSTATE)
        nested.lResult =
            nested.isPhone ? nested.tapi->PhoneSetGain(1, 2, TRUE) : nested.tapi->LineHold(TRUE);
}

TEST_F(CLineTest, AWaitInsideAWaitEndsBoth) {
    MakeCall();
    ASSERT_EQ(m_tapi->PhoneOpen(0, 1), 0);
    SNested nested = {m_tapi.Get(), false, 0};
    m_tapi->LineSetUserCallback(WaitInside, reinterpret_cast<DWORD_PTR>(&nested));
    FakeTapi()->CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), E_TAPI_REENTERED);
    EXPECT_EQ(nested.lResult, E_TAPI_REENTERED);
    const std::string ABORTED =
        "1 CVTapi::MLineWaitForReply() - Reentrancy caused function to abort\n";
    EXPECT_EQ(TakeTrace(), ABORTED +
                               "1 CVTapi::LineHold() - MLineWaitForReply() failed returning "
                               "0xa000000c\n\n" +
                               ABORTED +
                               "1 CVTapi::LineUnhold() - MLineWaitForReply() failed returning "
                               "0xa000000c\n");

    // A wait for the phone is another matter.
    nested.isPhone = true;
    nested.lResult = -1;
    FakeTapi()->CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), 0);
    EXPECT_EQ(nested.lResult, 0);
}

TEST_F(CLineTest, GrowsAResultOnceByWhatIsNeeded) {
    OpenLine();
    DWORD first = 3000;
    DWORD second = 0;
    LONG result = 0;
    FakeTapi()->fill = [&](const std::string&, LPVOID record) {
        auto& caps = *static_cast<LINEDEVCAPS*>(record);
        EXPECT_EQ(caps.dwNumAddresses, 0u); // cleared each time
        caps.dwNumAddresses = 9;
        caps.dwNeededSize = FakeTapi()->calls.back().ends_with("[1240]") ? first : second;
        caps.dwTotalSize = 0x7FFFFFFF;
        return result;
    };
    const auto get = [&](DWORD size) {
        TakeCalls();
        CResult<LINEDEVCAPS> caps;
        const LONG status = m_tapi->LineGetDevCaps(4, caps);
        EXPECT_EQ(caps.Get() != nullptr, status >= 0);
        EXPECT_EQ(caps.Get() ? caps->dwTotalSize : 0, size);
        return status;
    };
    EXPECT_EQ(get(3000), 0);
    EXPECT_EQ(TakeCalls(), "lineGetDevCaps 11 4 65540 0 [1240]\nlineGetDevCaps 11 4 65540 0 "
                           "[3000]\n");
    second = 4000;
    EXPECT_EQ(get(3000), 0); // no third time
    result = LINEERR_STRUCTURETOOSMALL;
    EXPECT_EQ(get(0), LINEERR_STRUCTURETOOSMALL);
    for (const DWORD lie : {0u, 7u, 1240u}) {
        first = lie;
        EXPECT_EQ(get(0), LINEERR_STRUCTURETOOSMALL);
        EXPECT_EQ(TakeCalls(), "lineGetDevCaps 11 4 65540 0 [1240]\n");
    }
    for (const DWORD lie : {TAPI_RESULT_MAX + 1, 0xFFFFFFFFu}) {
        first = lie;
        TakeTrace();
        EXPECT_EQ(get(0), E_TAPI_NOMEMORY);
        EXPECT_EQ(TakeTrace(), "1 CVTapi::MLineGetDevCaps() - CoTaskMemAlloc() failure #2\n"
                               "1 CVTapi::LineGetDevCaps() - MLineGetDevCaps() failed returning "
                               "0xa0000003\n\n");
    }
}

TEST_F(CLineTest, IsIdentifiedByItsCallOrItself) {
    CResult<VARSTRING> none;
    EXPECT_EQ(m_tapi->LineGetID(none, "comm/datamodem"), E_TAPI_NOLINE);
    EXPECT_EQ(TakeTrace(), "1 CVTapi::LineGetID() - No valid line handle\n\n");
    OpenLine();
    TakeCalls();
    CResult<VARSTRING> line;
    EXPECT_EQ(m_tapi->LineGetID(line, "comm/datamodem"), 0);
    EXPECT_EQ(TakeCalls(), "lineGetID 12 0 0 1 [56] 'comm/datamodem'\n");
    m_tapi->LineClose();
    MakeCall();
    CResult<VARSTRING> call;
    EXPECT_EQ(m_tapi->LineGetID(call, "comm/datamodem"), 0);
    EXPECT_EQ(TakeCalls(), "lineGetID 12 0 13 4 [56] 'comm/datamodem'\n");
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
