// CVTapi's phone, from its opening to its closing, and the wrappers of what can be done with it.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

#include <utility>

namespace {

constexpr DWORD PHONE_STATES = PHONESTATE_CONNECTED | PHONESTATE_DISCONNECTED |
                               PHONESTATE_RINGMODE | PHONESTATE_SUSPEND | PHONESTATE_REINIT |
                               PHONESTATE_CAPSCHANGE | PHONESTATE_REMOVED;
static_assert(PHONE_STATES == 0x00E40086);

constexpr ETapiNeed PHONE = ETapiNeed::Phone;
constexpr ETapiNeed NOTHING = ETapiNeed::Nothing;
constexpr ETapiNeed SERVICE = ETapiNeed::PhoneService;
constexpr LPCSTR RETURING = "() failed returing";
constexpr LPCSTR INITIALIZE_FAILED = "MPhoneInitialize() failed returning";

constexpr STapiOperation PHONE_CLOSE = {"PhoneClose", "phoneClose"};
constexpr STapiOperation PHONE_CONFIG_DIALOG = {"PhoneConfigDialog", "phoneConfigDialog"};
constexpr STapiOperation PHONE_DEVICE_NAME_TO_ID = {.szName = "PhoneDeviceNameToID",
                                                    .szFunction = nullptr,
                                                    .need = SERVICE,
                                                    .szInitializeFailed = INITIALIZE_FAILED};
constexpr STapiOperation PHONE_GET_DEV_CAPS = {.szName = "PhoneGetDevCaps",
                                               .szFunction = "MPhoneGetDevCaps",
                                               .need = SERVICE,
                                               .szInitializeFailed = INITIALIZE_FAILED};
constexpr STapiOperation PHONE_GET_GAIN = {"PhoneGetGain", "phoneGetGain", PHONE, "", RETURING};
constexpr STapiOperation PHONE_GET_HOOK_SWITCH = {"PhoneGetHookSwitch", "phoneGetHookSwitch", PHONE,
                                                  "", RETURING};
constexpr STapiOperation PHONE_GET_ICON = {"PhoneGetIcon", "phoneGetIcon",   SERVICE, "",
                                           RETURING,       INITIALIZE_FAILED};
constexpr STapiOperation PHONE_GET_ID = {"PhoneGetID", "phoneGetID", PHONE};
constexpr STapiOperation PHONE_GET_RING = {"PhoneGetRing", "phoneGetRing", PHONE, "", RETURING};
constexpr STapiOperation PHONE_GET_STATUS = {"PhoneGetStatus", "phoneGetStatus", NOTHING};
constexpr STapiOperation PHONE_GET_VOLUME = {"PhoneGetVolume", "phoneGetVolume", PHONE, "",
                                             RETURING};
constexpr STapiOperation PHONE_SET_GAIN = {.szName = "PhoneSetGain",
                                           .szFunction = "phoneSetGain",
                                           .need = PHONE,
                                           .szFailed = RETURING,
                                           .szWaitFailed = "MPhonwWaitForReply() failed returning"};
constexpr STapiOperation PHONE_SET_HOOK_SWITCH = {.szName = "PhoneSetHookSwitch",
                                                  .szFunction = "phoneSetHookSwitch",
                                                  .need = PHONE,
                                                  .szFailed = RETURING,
                                                  .szWaitFailed =
                                                      "MPhoneWaitForReply() failed returning"};
constexpr STapiOperation PHONE_SET_VOLUME = {.szName = "PhoneSetVolume",
                                             .szFunction = "phoneSetVolume",
                                             .need = PHONE,
                                             .szFailed = RETURING,
                                             .szWaitFailed =
                                                 "MPhonwWaitForReply() failed returning"};
constexpr STapiOperation M_PHONE_GET_DEV_CAPS = {"MPhoneGetDevCaps", "phoneGetDevCaps"};

constexpr ETapiGrowth REFUSED = ETapiGrowth::WhenRefusedForSize;
constexpr STapiResult CAPABILITIES = {sizeof(PHONECAPS) + 1000, REFUSED};
constexpr STapiResult PHONE_STATUS = {sizeof(PHONESTATUS) + 1000, REFUSED};
constexpr STapiResult DEVICE_ID = {56, REFUSED};

} // namespace

LONG CVTapi::PhoneOpen(DWORD dwDeviceID, DWORD dwPrivilege) {
    const CLock lock(m_CritSec);
    if (m_hPhone) {
        DebugError("CVTapi::PhoneOpen() - A phone has already been opened");
        return E_TAPI_PHONEOPEN;
    }
    const LONG status = MPhoneOpen(dwDeviceID, dwPrivilege);
    if (status < 0)
        MPhoneClose();
    return status;
}

LONG CVTapi::MPhoneOpen(DWORD dwDeviceID, DWORD dwPrivilege) {
    LONG status = CheckStatus("CVTapi::PhoneOpen() - MPhoneInitialize() failed returning %#08lx",
                              MPhoneInitialize());
    if (status < 0)
        return status;
    status =
        CheckStatus("CVTapi::PhoneOpen() - MPhoneNegotiateAPIVersion() failed returning %#08lx",
                    MPhoneNegotiateAPIVersion(dwDeviceID, &m_dwPhoneAPIVersion));
    if (status < 0)
        return status;
    status = CheckStatus("CVTapi::PhoneOpen() - phoneOpen() failed returning %#08lx",
                         g_TapiLibrary.phoneOpen(g_hPhoneApp, dwDeviceID, &m_hPhone,
                                                 m_dwPhoneAPIVersion, 0u, Instance(), dwPrivilege));
    if (status < 0)
        return status;
    return CheckStatus("CVTapi::PhoneOpen() - phoneSetStatusMessages() failed returning %#08lx",
                       g_TapiLibrary.phoneSetStatusMessages(
                           m_hPhone, PHONE_STATES, PHONEBUTTONMODE_KEYPAD, PHONEBUTTONSTATE_DOWN));
}

LONG CVTapi::PhoneClose() {
    const CLock lock(m_CritSec);
    return MPhoneClose();
}

LONG CVTapi::MPhoneClose() {
    if (!m_hPhone)
        return 0;
    const LONG status = g_TapiLibrary.phoneClose(m_hPhone);
    m_hPhone = 0;
    return CheckResult(PHONE_CLOSE, status);
}

LONG CVTapi::MPhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) {
    DWORD dwVersion = TAPI_API_VERSION;
    return ObtainResult(
        M_PHONE_GET_DEV_CAPS, CAPABILITIES, ppCapabilities, [&](PHONECAPS* capabilities) {
            return g_TapiLibrary.phoneGetDevCaps(g_hPhoneApp, dwDeviceID,
                                                 std::exchange(dwVersion, m_dwPhoneAPIVersion), 0u,
                                                 capabilities);
        });
}

LONG CVTapi::PhoneDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) {
    const CLock lock(m_CritSec);
    const LONG missing = Provide(PHONE_DEVICE_NAME_TO_ID);
    if (missing != 0)
        return missing;
    for (DWORD dwDeviceID = 0; dwDeviceID < g_dwNumPhoneDevs; ++dwDeviceID) {
        PHONECAPS* capabilities = nullptr;
        if (MPhoneGetDevCaps(dwDeviceID, &capabilities) < 0)
            continue;
        const CTaskMemory<PHONECAPS> owner(capabilities);
        if (PhoneNameOf(*capabilities) != szName)
            continue;
        *pdwDeviceID = dwDeviceID;
        DebugTrace("CVTapi::PhoneDeviceNameToID() - Device \"%s\" = %ld\n", szName,
                   static_cast<long>(dwDeviceID));
        return 0;
    }
    DebugError("CVTapi::PhoneDeviceNameToID() - Device \"%s\" not found", szName);
    return E_TAPI_NODEVICE;
}

LONG CVTapi::PhoneConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) {
    return Ask(PHONE_CONFIG_DIALOG, [&] {
        return g_TapiLibrary.phoneConfigDialog(dwDeviceID, hwndOwner, szDeviceClass);
    });
}

LONG CVTapi::PhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) {
    *ppCapabilities = nullptr;
    return Ask(PHONE_GET_DEV_CAPS, [&] { return MPhoneGetDevCaps(dwDeviceID, ppCapabilities); });
}

LONG CVTapi::PhoneGetGain(DWORD dwHookSwitchDev, LPDWORD pdwGain) {
    return Ask(PHONE_GET_GAIN,
               [&] { return g_TapiLibrary.phoneGetGain(m_hPhone, dwHookSwitchDev, pdwGain); });
}

LONG CVTapi::PhoneGetHookSwitch(LPDWORD pdwHookSwitchDevs) {
    return Ask(PHONE_GET_HOOK_SWITCH,
               [&] { return g_TapiLibrary.phoneGetHookSwitch(m_hPhone, pdwHookSwitchDevs); });
}

LONG CVTapi::PhoneGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) {
    return Ask(PHONE_GET_ICON,
               [&] { return g_TapiLibrary.phoneGetIcon(dwDeviceID, szDeviceClass, phIcon); });
}

LONG CVTapi::PhoneGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) {
    return Obtain(PHONE_GET_ID, DEVICE_ID, ppDeviceID, [&](VARSTRING* identifier) {
        return g_TapiLibrary.phoneGetID(m_hPhone, identifier, szDeviceClass);
    });
}

LONG CVTapi::PhoneGetRing(LPDWORD pdwRingMode, LPDWORD pdwVolume) {
    return Ask(PHONE_GET_RING,
               [&] { return g_TapiLibrary.phoneGetRing(m_hPhone, pdwRingMode, pdwVolume); });
}

LONG CVTapi::PhoneGetStatus(PHONESTATUS** ppPhoneStatus) {
    return Obtain(PHONE_GET_STATUS, PHONE_STATUS, ppPhoneStatus, [&](PHONESTATUS* status) {
        return g_TapiLibrary.phoneGetStatus(m_hPhone, status);
    });
}

LONG CVTapi::PhoneGetVolume(DWORD dwHookSwitchDev, LPDWORD pdwVolume) {
    return Ask(PHONE_GET_VOLUME,
               [&] { return g_TapiLibrary.phoneGetVolume(m_hPhone, dwHookSwitchDev, pdwVolume); });
}

LONG CVTapi::PhoneSetGain(DWORD dwHookSwitchDev, DWORD dwGain, BOOL bWait) {
    return AskAndWait(PHONE_SET_GAIN, bWait, [&] {
        return g_TapiLibrary.phoneSetGain(m_hPhone, dwHookSwitchDev, dwGain);
    });
}

LONG CVTapi::PhoneSetHookSwitch(DWORD dwHookSwitchDevs, DWORD dwHookSwitchMode, BOOL bWait) {
    return AskAndWait(PHONE_SET_HOOK_SWITCH, bWait, [&] {
        return g_TapiLibrary.phoneSetHookSwitch(m_hPhone, dwHookSwitchDevs, dwHookSwitchMode);
    });
}

LONG CVTapi::PhoneSetUserCallback(PHONECALLBACK pfnCallback, DWORD_PTR dwInstance) {
    const CLock lock(m_CritSec);
    m_pfnPhoneCallback = pfnCallback;
    m_dwPhoneCallbackInstance = dwInstance;
    return 0;
}

LONG CVTapi::PhoneSetVolume(DWORD dwHookSwitchDev, DWORD dwVolume, BOOL bWait) {
    return AskAndWait(PHONE_SET_VOLUME, bWait, [&] {
        return g_TapiLibrary.phoneSetVolume(m_hPhone, dwHookSwitchDev, dwVolume);
    });
}
