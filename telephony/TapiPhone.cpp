// CVTapi's phone, from its opening to its closing, and the wrappers of what can be done with it.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "telephony/TapiService.h"

#include <utility>

namespace {

constexpr DWORD kPhoneStates = PHONESTATE_CONNECTED | PHONESTATE_DISCONNECTED |
                               PHONESTATE_RINGMODE | PHONESTATE_SUSPEND | PHONESTATE_REINIT |
                               PHONESTATE_CAPSCHANGE | PHONESTATE_REMOVED;
static_assert(kPhoneStates == 0x00E40086);

constexpr ETapiNeed kPhone = ETapiNeed::Phone;
constexpr ETapiNeed kNothing = ETapiNeed::Nothing;
constexpr ETapiNeed kService = ETapiNeed::PhoneService;
constexpr LPCSTR kReturing = "() failed returing";
constexpr LPCSTR kInitializeFailed = "MPhoneInitialize() failed returning";

constexpr TapiOperation kPhoneClose = {"PhoneClose", "phoneClose"};
constexpr TapiOperation kPhoneConfigDialog = {"PhoneConfigDialog", "phoneConfigDialog"};
constexpr TapiOperation kPhoneGetDevCaps = {.szName = "PhoneGetDevCaps",
                                            .szFunction = "MPhoneGetDevCaps",
                                            .need = kService,
                                            .szInitializeFailed = kInitializeFailed};
constexpr TapiOperation kPhoneGetGain = {"PhoneGetGain", "phoneGetGain", kPhone, "", kReturing};
constexpr TapiOperation kPhoneGetHookSwitch = {"PhoneGetHookSwitch", "phoneGetHookSwitch", kPhone,
                                               "", kReturing};
constexpr TapiOperation kPhoneGetIcon = {"PhoneGetIcon", "phoneGetIcon",   kService, "",
                                         kReturing,      kInitializeFailed};
constexpr TapiOperation kPhoneGetID = {"PhoneGetID", "phoneGetID", kPhone};
constexpr TapiOperation kPhoneGetRing = {"PhoneGetRing", "phoneGetRing", kPhone, "", kReturing};
constexpr TapiOperation kPhoneGetStatus = {"PhoneGetStatus", "phoneGetStatus", kNothing};
constexpr TapiOperation kPhoneGetVolume = {"PhoneGetVolume", "phoneGetVolume", kPhone, "",
                                           kReturing};
constexpr TapiOperation kPhoneSetGain = {.szName = "PhoneSetGain",
                                         .szFunction = "phoneSetGain",
                                         .need = kPhone,
                                         .szFailed = kReturing,
                                         .szWaitFailed = "MPhonwWaitForReply() failed returning"};
constexpr TapiOperation kPhoneSetHookSwitch = {.szName = "PhoneSetHookSwitch",
                                               .szFunction = "phoneSetHookSwitch",
                                               .need = kPhone,
                                               .szFailed = kReturing,
                                               .szWaitFailed =
                                                   "MPhoneWaitForReply() failed returning"};
constexpr TapiOperation kPhoneSetVolume = {.szName = "PhoneSetVolume",
                                           .szFunction = "phoneSetVolume",
                                           .need = kPhone,
                                           .szFailed = kReturing,
                                           .szWaitFailed = "MPhonwWaitForReply() failed returning"};
constexpr TapiOperation kMPhoneGetDevCaps = {"MPhoneGetDevCaps", "phoneGetDevCaps"};

constexpr ETapiGrowth kRefused = ETapiGrowth::WhenRefusedForSize;
constexpr TapiRecordRule kCapabilities = {sizeof(PHONECAPS) + 1000, kRefused};
constexpr TapiRecordRule kPhoneStatus = {sizeof(PHONESTATUS) + 1000, kRefused};
constexpr TapiRecordRule kDeviceId = {56, kRefused};

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
                           m_hPhone, kPhoneStates, PHONEBUTTONMODE_KEYPAD, PHONEBUTTONSTATE_DOWN));
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
    return CheckResult(kPhoneClose, status);
}

LONG CVTapi::MPhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) {
    DWORD dwVersion = TAPI_API_VERSION;
    return ObtainResult(
        kMPhoneGetDevCaps, kCapabilities, ppCapabilities, [&](PHONECAPS* capabilities) {
            return g_TapiLibrary.phoneGetDevCaps(g_hPhoneApp, dwDeviceID,
                                                 std::exchange(dwVersion, m_dwPhoneAPIVersion), 0u,
                                                 capabilities);
        });
}

LONG CVTapi::PhoneConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) {
    return Ask(kPhoneConfigDialog, [&] {
        return g_TapiLibrary.phoneConfigDialog(dwDeviceID, hwndOwner, szDeviceClass);
    });
}

LONG CVTapi::PhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) {
    *ppCapabilities = nullptr;
    return Ask(kPhoneGetDevCaps, [&] { return MPhoneGetDevCaps(dwDeviceID, ppCapabilities); });
}

LONG CVTapi::PhoneGetGain(DWORD dwHookSwitchDev, LPDWORD pdwGain) {
    return Ask(kPhoneGetGain,
               [&] { return g_TapiLibrary.phoneGetGain(m_hPhone, dwHookSwitchDev, pdwGain); });
}

LONG CVTapi::PhoneGetHookSwitch(LPDWORD pdwHookSwitchDevs) {
    return Ask(kPhoneGetHookSwitch,
               [&] { return g_TapiLibrary.phoneGetHookSwitch(m_hPhone, pdwHookSwitchDevs); });
}

LONG CVTapi::PhoneGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) {
    return Ask(kPhoneGetIcon,
               [&] { return g_TapiLibrary.phoneGetIcon(dwDeviceID, szDeviceClass, phIcon); });
}

LONG CVTapi::PhoneGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) {
    return Obtain(kPhoneGetID, kDeviceId, ppDeviceID, [&](VARSTRING* identifier) {
        return g_TapiLibrary.phoneGetID(m_hPhone, identifier, szDeviceClass);
    });
}

LONG CVTapi::PhoneGetRing(LPDWORD pdwRingMode, LPDWORD pdwVolume) {
    return Ask(kPhoneGetRing,
               [&] { return g_TapiLibrary.phoneGetRing(m_hPhone, pdwRingMode, pdwVolume); });
}

LONG CVTapi::PhoneGetStatus(PHONESTATUS** ppPhoneStatus) {
    return Obtain(kPhoneGetStatus, kPhoneStatus, ppPhoneStatus, [&](PHONESTATUS* status) {
        return g_TapiLibrary.phoneGetStatus(m_hPhone, status);
    });
}

LONG CVTapi::PhoneGetVolume(DWORD dwHookSwitchDev, LPDWORD pdwVolume) {
    return Ask(kPhoneGetVolume,
               [&] { return g_TapiLibrary.phoneGetVolume(m_hPhone, dwHookSwitchDev, pdwVolume); });
}

LONG CVTapi::PhoneSetGain(DWORD dwHookSwitchDev, DWORD dwGain, BOOL bWait) {
    return AskAndWait(kPhoneSetGain, bWait, [&] {
        return g_TapiLibrary.phoneSetGain(m_hPhone, dwHookSwitchDev, dwGain);
    });
}

LONG CVTapi::PhoneSetHookSwitch(DWORD dwHookSwitchDevs, DWORD dwHookSwitchMode, BOOL bWait) {
    return AskAndWait(kPhoneSetHookSwitch, bWait, [&] {
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
    return AskAndWait(kPhoneSetVolume, bWait, [&] {
        return g_TapiLibrary.phoneSetVolume(m_hPhone, dwHookSwitchDev, dwVolume);
    });
}
