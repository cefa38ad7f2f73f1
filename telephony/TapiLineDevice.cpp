// CVTapi's wrappers of what can be done with line devices and the line service, without a call.
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

#include <utility>

namespace {

constexpr ETapiNeed kLine = ETapiNeed::Line;
constexpr ETapiNeed kNothing = ETapiNeed::Nothing;
constexpr ETapiNeed kService = ETapiNeed::LineService;

constexpr TapiOperation kLineConfigDialog = {"LineConfigDialog", "LineConfigDialog", kService,
                                             "\n"};
constexpr TapiOperation kLineConfigDialogEdit = {.szName = "LineConfigDialogEdit",
                                                 .szFunction = nullptr,
                                                 .need = kService,
                                                 .szEnd = "\n",
                                                 .szInitializeFailed =
                                                     "MLineinitialize failed returning"};
constexpr TapiOperation kLineGetAppPriority = {"LineGetAppPriority", "lineGetAppPriority", kNothing,
                                               "\n"};
constexpr TapiOperation kLineGetCountry = {"LineGetCountry", "lineGetCountry", kNothing, "\n"};
constexpr TapiOperation kLineGetDevCaps = {"LineGetDevCaps", "MLineGetDevCaps", kService, "\n"};
constexpr TapiOperation kLineGetDevConfig = {"LineGetDevConfig", "MLineGetDevConfig", kService,
                                             "\n"};
constexpr TapiOperation kLineGetIcon = {"LineGetIcon", "lineGetIcon", kService, "\n"};
constexpr TapiOperation kLineGetLineDevStatus = {"LineGetLineDevStatus", "lineGetLineDevStatus",
                                                 kLine, "\n"};
constexpr TapiOperation kLineGetRequest = {"LineGetRequest", "lineGetRequest", kService, "\n"};
constexpr TapiOperation kLineGetTranslateCaps = {"LineGetTranslateCaps", "lineGetTranslateCaps",
                                                 kService, "\n"};
constexpr TapiOperation kLineRegisterRequestRecipient = {
    .szName = "LineRegisterRequestRecipient",
    .szFunction = "lineRegisterRequestRecipient",
    .need = kService,
    .szInitializeFailed = "MLineInitialize() failed returnint"};
constexpr TapiOperation kLineSetAppPriority = {"LineSetAppPriority", "lineSetAppPriority"};
constexpr TapiOperation kLineSetCurrentLocation = {"LineSetCurrentLocation",
                                                   "lineSetCurrentLocation", kService};
constexpr TapiOperation kLineSetDevConfig = {"LineSetDevConfig", "lineSetDevConfig", kService};
constexpr TapiOperation kLineSetTollList = {"LineSetTollList", "lineSetTollList", kService};
constexpr TapiOperation kLineTranslateAddress = {"LineTranslateAddress", "lineTranslateAddress",
                                                 kService};
constexpr TapiOperation kLineTranslateDialog = {"LineTranslateDialog", "lineTranslateDialog",
                                                kService};
constexpr TapiOperation kMLineGetDevCaps = {"MLineGetDevCaps", "lineGetDevCaps"};
constexpr TapiOperation kMLineGetDevConfig = {"MLineGetDevConfig", "lineGetDevConfig"};

constexpr TapiRecordRule kCapabilities = {sizeof(LINEDEVCAPS) + 1000};
constexpr TapiRecordRule kConfiguration = {1024};
constexpr TapiRecordRule kCountries = {1024};
constexpr TapiRecordRule kLineStatus = {sizeof(LINEDEVSTATUS) + 1000};
constexpr TapiRecordRule kTranslateCaps = {sizeof(LINETRANSLATECAPS) + 1000};
constexpr TapiRecordRule kTranslateOutput = {sizeof(LINETRANSLATEOUTPUT) + 1000};

} // namespace

LONG CVTapi::MLineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) {
    DWORD dwVersion = TAPI_API_VERSION;
    return ObtainResult(
        kMLineGetDevCaps, kCapabilities, ppCapabilities, [&](LINEDEVCAPS* capabilities) {
            return g_TapiLibrary.lineGetDevCaps(g_hLineApp, dwDeviceID,
                                                std::exchange(dwVersion, m_dwLineAPIVersion), 0u,
                                                capabilities);
        });
}

LONG CVTapi::MLineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) {
    return ObtainResult(kMLineGetDevConfig, kConfiguration, ppConfig, [&](VARSTRING* config) {
        return g_TapiLibrary.lineGetDevConfig(dwDeviceID, config, szDeviceClass);
    });
}

LONG CVTapi::LineConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) {
    return Ask(kLineConfigDialog, [&] {
        return g_TapiLibrary.lineConfigDialog(dwDeviceID, hwndOwner, szDeviceClass);
    });
}

LONG CVTapi::LineConfigDialogEdit(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass,
                                  LPCVOID pConfigIn, DWORD dwSize, VARSTRING** ppConfigOut) {
    const CLock lock(m_CritSec);
    *ppConfigOut = nullptr;
    const LONG missing = Provide(kLineConfigDialogEdit);
    if (missing != 0)
        return missing;
    VARSTRING* present = nullptr;
    if (!pConfigIn) {
        const LONG status = CheckStatus("CVTapi::LineConfigDialogEdit() - mLineGetDevConfig failed "
                                        "returning %#08lx\n",
                                        MLineGetDevConfig(dwDeviceID, &present, szDeviceClass));
        if (status < 0)
            return status;
        pConfigIn = BytesOf(*present).data();
        dwSize = static_cast<DWORD>(BytesOf(*present).size());
    }
    const CTaskMemory<VARSTRING> owner(present);
    return ObtainResult(kLineConfigDialogEdit, kConfiguration, ppConfigOut, [&](VARSTRING* out) {
        return g_TapiLibrary.lineConfigDialogEdit(dwDeviceID, hwndOwner, szDeviceClass, pConfigIn,
                                                  dwSize, out);
    });
}

LONG CVTapi::LineGetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                LPDWORD pdwPriority) {
    *pdwPriority = 0;
    return Ask(kLineGetAppPriority, [&] {
        return g_TapiLibrary.lineGetAppPriority(szAppFilename, dwMediaMode, nullptr, dwRequestMode,
                                                nullptr, pdwPriority);
    });
}

LONG CVTapi::LineGetCountry(DWORD dwCountryID, LINECOUNTRYLIST** ppCountryList) {
    return Obtain(kLineGetCountry, kCountries, ppCountryList, [&](LINECOUNTRYLIST* list) {
        return g_TapiLibrary.lineGetCountry(dwCountryID, TAPI_API_VERSION, list);
    });
}

LONG CVTapi::LineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) {
    *ppCapabilities = nullptr;
    return Ask(kLineGetDevCaps, [&] { return MLineGetDevCaps(dwDeviceID, ppCapabilities); });
}

LONG CVTapi::LineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) {
    *ppConfig = nullptr;
    return Ask(kLineGetDevConfig,
               [&] { return MLineGetDevConfig(dwDeviceID, ppConfig, szDeviceClass); });
}

LONG CVTapi::LineGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) {
    return Ask(kLineGetIcon,
               [&] { return g_TapiLibrary.lineGetIcon(dwDeviceID, szDeviceClass, phIcon); });
}

LONG CVTapi::LineGetLineDevStatus(LINEDEVSTATUS** ppLineDevStatus) {
    return Obtain(kLineGetLineDevStatus, kLineStatus, ppLineDevStatus, [&](LINEDEVSTATUS* status) {
        return g_TapiLibrary.lineGetLineDevStatus(m_hLine, status);
    });
}

LONG CVTapi::LineGetRequest(DWORD dwRequestMode, LPVOID pRequestBuffer) {
    return Ask(kLineGetRequest, [&] {
        return g_TapiLibrary.lineGetRequest(g_hLineApp, dwRequestMode, pRequestBuffer);
    });
}

LONG CVTapi::LineGetTranslateCaps(LINETRANSLATECAPS** ppTranslateCaps) {
    return Obtain(kLineGetTranslateCaps, kTranslateCaps, ppTranslateCaps,
                  [&](LINETRANSLATECAPS* capabilities) {
                      return g_TapiLibrary.lineGetTranslateCaps(g_hLineApp, TAPI_API_VERSION,
                                                                capabilities);
                  });
}

LONG CVTapi::LineRegisterRequestRecipient(DWORD dwRegistrationInstance, DWORD dwRequestMode,
                                          BOOL bEnable) {
    return Ask(kLineRegisterRequestRecipient, [&] {
        return g_TapiLibrary.lineRegisterRequestRecipient(
            g_hLineApp, dwRegistrationInstance, dwRequestMode, static_cast<DWORD>(bEnable));
    });
}

LONG CVTapi::LineSetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                DWORD dwPriority) {
    return Ask(kLineSetAppPriority, [&] {
        return g_TapiLibrary.lineSetAppPriority(szAppFilename, dwMediaMode, nullptr, dwRequestMode,
                                                nullptr, dwPriority);
    });
}

LONG CVTapi::LineSetCurrentLocation(DWORD dwLocation) {
    return Ask(kLineSetCurrentLocation,
               [&] { return g_TapiLibrary.lineSetCurrentLocation(g_hLineApp, dwLocation); });
}

LONG CVTapi::LineSetDevConfig(DWORD dwDeviceID, LPCVOID pConfig, DWORD dwSize,
                              LPCSTR szDeviceClass) {
    return Ask(kLineSetDevConfig, [&] {
        return g_TapiLibrary.lineSetDevConfig(dwDeviceID, pConfig, dwSize, szDeviceClass);
    });
}

LONG CVTapi::LineSetTollList(LPCSTR szAddress, DWORD dwTollListOption) {
    return Ask(kLineSetTollList, [&] {
        return g_TapiLibrary.lineSetTollList(g_hLineApp, 0u, szAddress, dwTollListOption);
    });
}

LONG CVTapi::LineTranslateAddress(LPCSTR szAddress, DWORD dwCard, DWORD dwTranslateOptions,
                                  LINETRANSLATEOUTPUT** ppTranslateOutput) {
    return Obtain(kLineTranslateAddress, kTranslateOutput, ppTranslateOutput,
                  [&](LINETRANSLATEOUTPUT* output) {
                      return g_TapiLibrary.lineTranslateAddress(g_hLineApp, 0u, TAPI_API_VERSION,
                                                                szAddress, dwCard,
                                                                dwTranslateOptions, output);
                  });
}

LONG CVTapi::LineTranslateDialog(HWND hwndOwner, LPCSTR szAddress) {
    return Ask(kLineTranslateDialog, [&] {
        return g_TapiLibrary.lineTranslateDialog(g_hLineApp, 0u, TAPI_API_VERSION, hwndOwner,
                                                 szAddress);
    });
}
