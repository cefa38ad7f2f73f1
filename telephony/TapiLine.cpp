// CVTapi's line, from its opening to its closing, and the call on it.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

namespace {

constexpr DWORD kCallTimeout = 60000; // milliseconds

// What a line is to tell of itself while it is open; nothing of its addresses.
constexpr DWORD kLineStates = LINEDEVSTATE_RINGING | LINEDEVSTATE_CONNECTED |
                              LINEDEVSTATE_DISCONNECTED | LINEDEVSTATE_INSERVICE |
                              LINEDEVSTATE_OUTOFSERVICE | LINEDEVSTATE_OPEN | LINEDEVSTATE_CLOSE |
                              LINEDEVSTATE_REINIT | LINEDEVSTATE_REMOVED;
static_assert(kLineStates == 0x010406CE);

constexpr TapiOperation kLineCloseRow = {"LineClose", "lineClose", ETapiNeed::Nothing, "\n"};
constexpr TapiOperation kLineDrop = {"LineDrop", "lineDrop", ETapiNeed::Call, "\n"};
constexpr TapiOperation kLineGetID = {"LineGetID", "lineGetID", ETapiNeed::Line, "\n"};
constexpr TapiOperation kMLineGetNewCalls = {.szName = "MLineGetNewCalls", .szFunction = nullptr};

constexpr TapiRecordRule kDeviceId = {56};
constexpr TapiRecordRule kCallList = {1024};

} // namespace

LONG CVTapi::LineOpen(DWORD dwDeviceID, DWORD dwPrivileges, DWORD dwMediaModes) {
    const CLock lock(m_CritSec);
    if (m_hLine) {
        DebugError("CVTapi::LineOpen() - A line has already been opened");
        return E_TAPI_LINEOPEN;
    }
    const LONG status = MLineOpen(dwDeviceID, dwPrivileges, dwMediaModes);
    if (status < 0)
        MLineClose();
    return status;
}

LONG CVTapi::MLineOpen(DWORD dwDeviceID, DWORD dwPrivileges, DWORD dwMediaModes) {
    LONG status = CheckStatus("CVTapi::LineOpen() - MLineInitialize() failed returning %#08lx",
                              MLineInitialize());
    if (status < 0)
        return status;
    status = CheckStatus("CVTapi::LineOpen() - MLineNegotiateAPIVersion() faile returning %#08lx",
                         MLineNegotiateAPIVersion(dwDeviceID, &m_dwLineAPIVersion));
    if (status < 0)
        return status;
    status =
        CheckStatus("CVTapi::LineOpen() - lineOpen() failed returning %#08lx",
                    g_TapiLibrary.lineOpen(g_hLineApp, dwDeviceID, &m_hLine, m_dwLineAPIVersion, 0u,
                                           Instance(), dwPrivileges, dwMediaModes, nullptr));
    if (status < 0)
        return status;
    status = CheckStatus("CVTapi::LineOpen() - lineSetStatusMessage() failed returning %#08lx",
                         g_TapiLibrary.lineSetStatusMessages(m_hLine, kLineStates, 0u));
    if (status < 0 || !(dwPrivileges & LINECALLPRIVILEGE_MONITOR))
        return status;
    return CheckStatus("CVTapi::LinOpen() - MLineGetNewCalls() failed returning %#08lx",
                       MLineGetNewCalls());
}

LONG CVTapi::LineClose() {
    const CLock lock(m_CritSec);
    return MLineClose();
}

LONG CVTapi::MLineClose() {
    if (!m_hLine)
        return 0;
    const LONG status = g_TapiLibrary.lineClose(m_hLine);
    m_hLine = 0;
    m_hCall = 0;
    return CheckResult(kLineCloseRow, status);
}

LONG CVTapi::MLineGetNewCalls() {
    LINECALLLIST* calls = nullptr;
    const LONG status = ObtainResult(kMLineGetNewCalls, kCallList, &calls, [&](LINECALLLIST* list) {
        return g_TapiLibrary.lineGetNewCalls(m_hLine, 0u, LINECALLSELECT_LINE, list);
    });
    const CTaskMemory<LINECALLLIST> owner(calls);
    if (calls)
        TakeCalls(*calls);
    else if (status != E_TAPI_NOMEMORY)
        CheckStatus("CVTapi::LineGetNewCalls() - lineGetNewCalls() failed returning %#08lx",
                    status);
    return status;
}

// The first call becomes the current one; the others are nobody's.
void CVTapi::TakeCalls(const LINECALLLIST& calls) {
    const DWORD dwCount = CountCalls(calls);
    if (dwCount == 0) {
        DebugTrace("CVTapi::LineGetNewCalls() - No active calls found\n");
        return;
    }
    m_hCall = CallAt(calls, 0);
    DebugTrace("CVTapi::LineGetNewCalls() - Active call found\n");
    for (DWORD dwIndex = 1; dwIndex < dwCount; ++dwIndex)
        if (const HCALL hCall = CallAt(calls, dwIndex); hCall != m_hCall)
            g_TapiLibrary.lineDeallocateCall(hCall);
}

LONG CVTapi::LineMakeCall(LPCSTR szDestination, DWORD dwCountryCode,
                          const LINECALLPARAMS* pCallParams, BOOL bWait) {
    const CLock lock(m_CritSec);
    LONG status = CheckStatus(
        "CVTapi::LineMakeCall() - MLineInitialize() failed returning %#08lx\n", MLineInitialize());
    if (status < 0)
        return status;
    if (m_hCall) {
        DebugTrace("CVTapi::LineMakeCall() - A call is already in progress on this line\n");
        return E_TAPI_CALLINPROGRESS;
    }
    status = CheckStatus(
        "CVTapi::LineMakeCall() - lineMakeCall() failed returning %#08lx",
        g_TapiLibrary.lineMakeCall(m_hLine, &m_hCall, szDestination, dwCountryCode, pCallParams));
    if (status < 0)
        m_hCall = 0;
    if (status < 0 || !bWait)
        return status;
    return CheckStatus("CVTapi::LineMakeCall() - MLineWaitForReply() failed returning %#08lx\n",
                       MLineWaitForReply(static_cast<DWORD>(status), kCallTimeout));
}

LONG CVTapi::LineDrop(BOOL bWait) {
    return AskAndWait(kLineDrop, bWait,
                      [&] { return g_TapiLibrary.lineDrop(m_hCall, nullptr, 0u); });
}

LONG CVTapi::LineGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) {
    return Obtain(kLineGetID, kDeviceId, ppDeviceID, [&](VARSTRING* identifier) {
        const DWORD dwSelect = m_hCall ? LINECALLSELECT_CALL : LINECALLSELECT_LINE;
        return g_TapiLibrary.lineGetID(m_hLine, 0u, m_hCall, dwSelect, identifier, szDeviceClass);
    });
}

LONG CVTapi::LineSetUserCallback(LINECALLBACK pfnCallback, DWORD_PTR dwInstance) {
    const CLock lock(m_CritSec);
    m_pfnLineCallback = pfnCallback;
    m_dwLineCallbackInstance = dwInstance;
    return 0;
}
