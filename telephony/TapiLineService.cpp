// The line service as CVTapi brings it up, and what its messages do to an object.
#include "telephony/Tapi.h"
#include "telephony/TapiService.h"

#include <algorithm>
#include <utility>

LONG CVTapi::MLineInitialize() {
    const CLock lock(g_TapiLock);
    if (g_hLineApp)
        return 0;
    const auto initialize = [] {
        return g_TapiLibrary.lineInitialize(&g_hLineApp, GetModuleHandleA(nullptr),
                                            &CVTapi::LineCallbackProc, nullptr, &g_dwNumLineDevs);
    };
    const LONG status =
        CheckStatus("CVTapi::MLineInitialize() - lineInitialize() failed returning %#08lx",
                    BringUp(initialize, LINEERR_REINIT, g_hLineApp));
    if (status < 0) {
        g_hLineApp = 0;
        return status;
    }
    g_dwNumLineDevs = std::min(g_dwNumLineDevs, kMostTapiDevices);
    return 0;
}

LONG CVTapi::MLineShutdown() {
    const CLock lock(g_TapiLock);
    if (!g_hLineApp)
        return 0;
    return CheckStatus("CVTapi::MLineShutdown() - lineShutdown() failed returning %#08lx",
                       g_TapiLibrary.lineShutdown(std::exchange(g_hLineApp, 0)));
}

LONG CVTapi::MLineNegotiateAPIVersion(DWORD dwDeviceID, LPDWORD pdwAPIVersion) {
    LINEEXTENSIONID extension = {};
    return CheckStatus("CVTapi::MLineNegotiateAPIVersion() - lineNegotiateAPIVersion() failed "
                       "returning %#08lx",
                       g_TapiLibrary.lineNegotiateAPIVersion(g_hLineApp, dwDeviceID,
                                                             TAPI_API_VERSION, TAPI_API_VERSION,
                                                             pdwAPIVersion, &extension));
}

TapiReply CVTapi::LineReply() {
    return {m_bLineWaiting, m_dwLineRequestID, m_bLineReplied, m_lLineReplyResult,
            "MLineWaitForReply"};
}

LONG CVTapi::MLineWaitForReply(DWORD dwRequestID, DWORD dwTimeout) {
    return LineReply().Wait(dwRequestID, dwTimeout);
}

void CVTapi::LineCallbackProc(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance,
                              DWORD_PTR dwParam1, DWORD_PTR dwParam2, DWORD_PTR dwParam3) {
    if (CVTapi* const object = FindObject(dwInstance))
        object->MLineCallback(hDevice, dwMessage, dwInstance, dwParam1, dwParam2, dwParam3);
}

void CVTapi::MLineCallback(DWORD hDevice, DWORD dwMessage, DWORD_PTR, DWORD_PTR dwParam1,
                           DWORD_PTR dwParam2, DWORD_PTR dwParam3) {
    if (dwMessage == LINE_CALLSTATE)
        FollowCallState(hDevice, static_cast<DWORD>(dwParam1));
    else if (dwMessage == LINE_REPLY)
        LineReply().Take(static_cast<DWORD>(dwParam1), static_cast<LONG>(dwParam2));
    if (m_pfnLineCallback)
        m_pfnLineCallback(hDevice, dwMessage, m_dwLineCallbackInstance, dwParam1, dwParam2,
                          dwParam3);
}

void CVTapi::FollowCallState(HCALL hCall, DWORD dwCallState) {
    switch (dwCallState) {
    case LINECALLSTATE_OFFERING:
    case LINECALLSTATE_CONNECTED:
        // A message that was under way when the line was closed brings no call.
        if (m_hLine)
            m_hCall = hCall;
        return;
    case LINECALLSTATE_IDLE:
        if (m_hCall)
            CheckStatus("CVTapi::MLineCallback() - lineDeallocateCall() failed returning %#08lx",
                        g_TapiLibrary.lineDeallocateCall(m_hCall));
        m_hCall = 0;
        return;
    case LINECALLSTATE_DISCONNECTED:
        // The call stays until it is idle, and nobody waits for the reply.
        if (m_hCall)
            CheckStatus("CVTapi::MLineCallback() - lineDrop() failed returning %#08lx",
                        g_TapiLibrary.lineDrop(m_hCall, nullptr, 0u));
        return;
    default:
        return;
    }
}
