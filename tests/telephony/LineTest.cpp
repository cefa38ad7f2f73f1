// The states of a line, its call and a phone, the waits for replies, the growth of results.
#include "tests/telephony/TelephonyTest.h"

#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

namespace {

using CLineTest = CTelephonyTest;

constexpr DWORD kOwner = LINECALLPRIVILEGE_OWNER;

TEST_F(CLineTest, IsOpenedOnceAndClosedWhenAnyStepFails) {
    // The next attempt goes one step further.
    for (const std::string function :
         {"lineInitialize", "lineNegotiateAPIVersion", "lineOpen", "lineSetStatusMessages",
          "lineGetNewCalls", "phoneInitialize", "phoneNegotiateAPIVersion", "phoneOpen",
          "phoneSetStatusMessages"}) {
        m_service.results[function] = {LINEERR_OPERATIONFAILED};
        EXPECT_EQ(function[0] == 'p' ? m_tapi->PhoneOpen(0, 2) : m_tapi->LineOpen(0, 6, 16),
                  LINEERR_OPERATIONFAILED)
            << function;
        EXPECT_EQ(m_service.open[0].nDevices + m_service.open[1].nDevices, 0) << function;
        EXPECT_EQ(m_tapi->LineGetLineDevStatus(CResult<LINEDEVSTATUS>()), E_TAPI_NOLINE);
        EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, FALSE), E_TAPI_NOPHONE);
    }
    Take();
    OpenLine();
    EXPECT_EQ(m_tapi->LineOpen(1, kOwner, 16), E_TAPI_LINEOPEN);
    EXPECT_EQ(m_tapi->LineGetID(CResult<VARSTRING>(), "c"), 0);
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(m_tapi->LineClose(), 0);
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    EXPECT_EQ(m_tapi->PhoneOpen(0, 2), E_TAPI_PHONEOPEN);
    EXPECT_EQ(Take(), "lineNegotiateAPIVersion 11 0 65540 65540 *\n"
                      "lineOpen 11 0 65540 0 4 16 null\nlineSetStatusMessages 12 17041102 0\n"
                      "! LineOpen() - A line has already been opened\n"
                      "lineGetID 12 0 0 1 [56] 'c'\nlineClose 12\n"
                      "phoneNegotiateAPIVersion 21 0 65540 65540 *\nphoneOpen 21 0 65540 0 2\n"
                      "phoneSetStatusMessages 22 14942342 8 2\n"
                      "! PhoneOpen() - A phone has already been opened\n");
}

TEST_F(CLineTest, WithMonitorPrivilegeTakesTheFirstCallThatIsThere) {
    m_service.fill = [](const std::string&, LPVOID record) {
        const LINECALLLIST head = {0xFFFFFFFF, 0, 0, 3, 12, sizeof head + 1};
        const DWORD handles[] = {31, 32, 31};
        std::memcpy(record, &head, sizeof head);
        std::memcpy(static_cast<BYTE*>(record) + sizeof head + 1, handles, sizeof handles);
        return 0;
    };
    OpenLine(LINECALLPRIVILEGE_MONITOR);
    EXPECT_EQ(m_tapi->LineHandoff("x", 1), 0);
    EXPECT_TRUE(Take().ends_with("]\n- LineGetNewCalls() - Active call found\n\n"
                                 "lineDeallocateCall 32\nlineHandoff 31 'x' 1\n"));
}

// A client's callback, which tells the service's record what it is told.
void Note(DWORD, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR dwParam1, DWORD_PTR dwParam2,
          DWORD_PTR) {
    reinterpret_cast<CFakeTapi*>(dwInstance)->log += "told " + std::to_string(dwMessage) + ' ' +
                                                     std::to_string(dwParam1) + ' ' +
                                                     std::to_string(dwParam2) + '\n';
}

TEST_F(CLineTest, FollowsTheStatesOfItsCall) {
    OpenLine();
    Take();
    m_tapi->LineSetUserCallback(Note, reinterpret_cast<DWORD_PTR>(&m_service));
    EXPECT_EQ(m_tapi->LineMakeCall("ATD1", 49, nullptr, TRUE), 0);
    EXPECT_EQ(m_tapi->LineMakeCall("1", 0, nullptr, TRUE), E_TAPI_CALLINPROGRESS);
    EXPECT_EQ(Take(), "lineMakeCall 12 'ATD1' 49 null\ntold 12 1000 0\n"
                      "- LineMakeCall() - A call is already in progress on this line\n\n");
    m_tapi->LineSetUserCallback(nullptr, 0);

    // States arrive in the next wait, before its own reply.
    m_service.results["lineDeallocateCall"] = {LINEERR_OPERATIONFAILED};
    m_service.CallState(50, LINECALLSTATE_CONNECTED);
    m_service.CallState(50, LINECALLSTATE_PROCEEDING);
    m_service.CallState(50, LINECALLSTATE_DISCONNECTED);
    EXPECT_EQ(m_tapi->LineHold(TRUE), 0);
    m_service.CallState(50, LINECALLSTATE_IDLE);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), 0);
    EXPECT_EQ(m_tapi->LineDrop(FALSE), E_TAPI_NOCALL);
    EXPECT_EQ(Take(), "lineHold 13\nlineDrop 50 null 0\nlineUnhold 50\nlineDeallocateCall 50\n"
                      "! MLineCallback() - lineDeallocateCall() failed*\n"
                      "! LineDrop() - No current call handle\n\n");

    // A message of a line that is closed by now, dispatched by another wait, brings no call.
    m_service.CallState(51, LINECALLSTATE_OFFERING);
    m_tapi->LineClose();
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, TRUE), 0);
    EXPECT_EQ(m_tapi->LineDrop(FALSE), E_TAPI_NOCALL);
}

TEST_F(CLineTest, WaitsForTheReplyOfItsOwnRequest) {
    MakeCall();
    m_service.request = [&](DWORD request, bool) {
        m_service.Reply(request - 1, LINEERR_INUSE);
        m_service.Reply(request, LINEERR_CALLUNAVAIL);
        m_service.Reply(request, LINEERR_NOMEM);
    };
    EXPECT_EQ(m_tapi->LineDial("2", 0, TRUE), LINEERR_CALLUNAVAIL);

    // Nothing comes in time; what comes late is nobody's, for the next wait either.
    DWORD late = 0;
    m_service.request = [&](DWORD request, bool) { late = request; };
    EXPECT_EQ(m_tapi->LineAnswer(FALSE), 1002);
    EXPECT_EQ(late, 1002u);
    Take();
    EXPECT_EQ(m_tapi->LineAnswer(TRUE), E_TAPI_TIMEOUT);
    m_service.Reply(late, LINEERR_INUSE);
    m_service.request = [&](DWORD request, bool isPhone) {
        m_service.Reply(request, isPhone ? 9 : LINEERR_NODEVICE, isPhone);
    };
    ASSERT_EQ(m_tapi->PhoneOpen(0, 2), 0);
    m_tapi->PhoneSetUserCallback(Note, reinterpret_cast<DWORD_PTR>(&m_service));
    EXPECT_EQ(m_tapi->PhoneSetVolume(1, 2, TRUE), 9);
    EXPECT_TRUE(Take().ends_with("phoneSetVolume 22 1 2\ntold 3 1004 9\n"));
    EXPECT_EQ(m_tapi->LineAnswer(TRUE), LINEERR_NODEVICE);

    // A request that is over at once.
    m_service.results["lineHold"] = {0};
    EXPECT_EQ(m_tapi->LineHold(TRUE), 0);
}

TEST_F(CLineTest, AWaitInsideAWaitEndsBoth) {
    ASSERT_EQ(m_tapi->PhoneOpen(0, 1), 0);
    MakeCall();
    using Work = std::function<void()>;
    Work work = [&] { EXPECT_EQ(m_tapi->LineHold(TRUE), E_TAPI_REENTERED); };
    const LINECALLBACK workInside = [](DWORD, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR,
                                       DWORD_PTR, DWORD_PTR) {
        if (dwMessage == LINE_CALLSTATE)
            (*reinterpret_cast<const Work*>(dwInstance))();
    };
    m_tapi->LineSetUserCallback(workInside, reinterpret_cast<DWORD_PTR>(&work));
    m_service.CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), E_TAPI_REENTERED);
    Take();

    // A wait for the phone is another matter.
    work = [&] { EXPECT_EQ(m_tapi->PhoneSetGain(1, 2, TRUE), 0); };
    m_service.CallState(13, LINECALLSTATE_PROCEEDING);
    EXPECT_EQ(m_tapi->LineUnhold(TRUE), 0);
    EXPECT_EQ(Take(), "lineUnhold 13\nphoneSetGain 22 1 2\n");
}

TEST_F(CLineTest, GrowsAResultOnceByWhatIsNeeded) {
    constexpr LONG kSmall = LINEERR_STRUCTURETOOSMALL;
    const std::string first = "lineGetDevCaps 11 4 65540 0 [1240]\n";
    const std::string both = first + "lineGetDevCaps 11 4 65540 0 [3000]\n";
    const struct {
        LONG answer;
        DWORD needed[2];
        LONG status;
        std::string calls;
    } rows[] = {
        {0, {1240, 0}, 0, first},
        {0, {3000, 4000}, 0, both},
        {kSmall, {3000, 4000}, kSmall, both},
        {kSmall, {1240, 0}, kSmall, first},
        {0, {kMostResultBytes + 1, 0}, E_TAPI_NOMEMORY, first},
    };
    OpenLine();
    for (const auto& row : rows) {
        m_service.fill = [&](const std::string& call, LPVOID record) {
            auto& caps = *static_cast<LINEDEVCAPS*>(record);
            caps.dwNeededSize = row.needed[call.ends_with("[1240]") ? 0 : 1];
            caps.dwTotalSize = 0x7FFFFFFF;
            return row.answer;
        };
        Take();
        CResult<LINEDEVCAPS> caps;
        EXPECT_EQ(m_tapi->LineGetDevCaps(4, caps), row.status);
        const std::string record = Take();
        EXPECT_EQ(record.substr(0, record.find('!')), row.calls);
        EXPECT_EQ(caps.record ? caps->dwTotalSize : 0, row.status ? 0 : row.needed[0]);
    }
}

// Only a refusal makes a phone's records grow; the service is asked even without a phone.
TEST_F(CLineTest, KeepsAPhonesIncompleteRecords) {
    for (const LONG refusal : {0, PHONEERR_STRUCTURETOOSMALL}) {
        m_service.fill = [&](const std::string& call, LPVOID record) {
            static_cast<PHONESTATUS*>(record)->dwNeededSize = 2000;
            return call.ends_with("[2000]") ? 0 : refusal;
        };
        CResult<PHONESTATUS> status;
        EXPECT_EQ(m_tapi->PhoneGetStatus(status), 0);
        EXPECT_EQ(status->dwTotalSize, refusal ? 2000u : 1100u);
    }
    EXPECT_TRUE(Take().starts_with("phoneGetStatus 0 [1100]\n"));
}

TEST_F(CLineTest, TheServiceComesUpOnceAndGoesWithTheLastObject) {
    m_service.results["lineInitialize"] = {LINEERR_REINIT, 5};
    OpenLine();
    EXPECT_TRUE(Take().starts_with("lineInitialize * null\nlineInitialize * null\nlineNegotiate"));
    ASSERT_EQ(m_tapi->PhoneOpen(0, 1), 0);
    CInterfacePtr<ITapi> other = Make();
    ASSERT_EQ(other->LineOpen(1, kOwner, 16), 0);
    Take();

    // What an object leaves open is closed, and its messages find nobody.
    const DWORD_PTR gone = m_service.open[0].instance;
    other.Reset();
    m_service.CallState(13, LINECALLSTATE_OFFERING, gone);
    EXPECT_EQ(m_tapi->PhoneSetGain(1, 1, TRUE), 0);

    m_service.results["phoneShutdown"] = {PHONEERR_OPERATIONUNAVAIL};
    m_service.results["lineShutdown"] = {LINEERR_OPERATIONFAILED};
    m_tapi.Reset();
    EXPECT_EQ(Take(), "lineClose 12\nphoneSetGain 22 1 1\nphoneShutdown 21\n"
                      "! MPhoneShutdown() - phoneShutdown() failed returning 0x9000001d\n"
                      "lineShutdown 11\n! MLineShutdown() - lineShutdown() failed*\n");
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
