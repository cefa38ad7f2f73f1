// The phone service as CVTapi brings it up, and what its messages do to an object.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "telephony/TapiService.h"

#include <algorithm>
#include <utility>

LONG CVTapi::MPhoneInitialize() {
    const CLock lock(g_TapiLock);
    if (g_hPhoneApp)
        return 0;
    const auto initialize = [] {
        return g_TapiLibrary.phoneInitialize(&g_hPhoneApp, GetModuleHandleA(nullptr),
                                             &CVTapi::PhoneCallbackProc, nullptr,
                                             &g_dwNumPhoneDevs);
    };
    const LONG status = BringUp(initialize, PHONEERR_REINIT, g_hPhoneApp);
    if (status != 0) {
        g_hPhoneApp = 0;
        DebugError("CVTapi::MPhoneInitialize() - phoneInitialize() failed returning %#08lx",
                   static_cast<unsigned long>(static_cast<DWORD>(status)));
        // A positive result is none that this call can have, and would pass for success.
        return status < 0 ? status : E_TAPI_FAILED;
    }
    g_dwNumPhoneDevs = std::min(g_dwNumPhoneDevs, kMostTapiDevices);
    return 0;
}

LONG CVTapi::MPhoneShutdown() {
    const CLock lock(g_TapiLock);
    if (!g_hPhoneApp)
        return 0;
    return CheckStatus("CVTapi::MPhoneShutdown() - phoneShutdown() failed returning %#08lx",
                       g_TapiLibrary.phoneShutdown(std::exchange(g_hPhoneApp, 0)));
}

LONG CVTapi::MPhoneNegotiateAPIVersion(DWORD dwDeviceID, LPDWORD pdwAPIVersion) {
    PHONEEXTENSIONID extension = {};
    return CheckStatus("CVTapi::MPhoneNegotiateAPIVersion() - phoneNegotiateAPIVersion() failed "
                       "returning %#08lx",
                       g_TapiLibrary.phoneNegotiateAPIVersion(g_hPhoneApp, dwDeviceID,
                                                              TAPI_API_VERSION, TAPI_API_VERSION,
                                                              pdwAPIVersion, &extension));
}

TapiReply CVTapi::PhoneReply() {
    return {m_bPhoneWaiting, m_dwPhoneRequestID, m_bPhoneReplied, m_lPhoneReplyResult,
            "MPhoneWaitForReply"};
}

LONG CVTapi::MPhoneWaitForReply(DWORD dwRequestID, DWORD dwTimeout) {
    return PhoneReply().Wait(dwRequestID, dwTimeout);
}

void CVTapi::PhoneCallbackProc(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance,
                               DWORD_PTR dwParam1, DWORD_PTR dwParam2, DWORD_PTR dwParam3) {
    if (CVTapi* const object = FindObject(dwInstance))
        object->MPhoneCallback(hDevice, dwMessage, dwInstance, dwParam1, dwParam2, dwParam3);
}

void CVTapi::MPhoneCallback(DWORD hDevice, DWORD dwMessage, DWORD_PTR, DWORD_PTR dwParam1,
                            DWORD_PTR dwParam2, DWORD_PTR dwParam3) {
    if (dwMessage == PHONE_REPLY)
        PhoneReply().Take(static_cast<DWORD>(dwParam1), static_cast<LONG>(dwParam2));
    if (m_pfnPhoneCallback)
        m_pfnPhoneCallback(hDevice, dwMessage, m_dwPhoneCallbackInstance, dwParam1, dwParam2,
                           dwParam3);
}
