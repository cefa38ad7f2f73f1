// CVTapi's wrappers of what can be done with line devices and the line service, without a call.
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

#include <utility>

namespace {

constexpr ETapiNeed LINE = ETapiNeed::Line;
constexpr ETapiNeed NOTHING = ETapiNeed::Nothing;
constexpr ETapiNeed SERVICE = ETapiNeed::LineService;

constexpr STapiOperation LINE_CONFIG_DIALOG = {"LineConfigDialog", "LineConfigDialog", SERVICE,
                                               "\n"};
constexpr STapiOperation LINE_CONFIG_DIALOG_EDIT = {.szName = "LineConfigDialogEdit",
                                                    .szFunction = nullptr,
                                                    .need = SERVICE,
                                                    .szEnd = "\n",
                                                    .szInitializeFailed =
                                                        "MLineinitialize failed returning"};
constexpr STapiOperation LINE_GET_APP_PRIORITY = {"LineGetAppPriority", "lineGetAppPriority",
                                                  NOTHING, "\n"};
constexpr STapiOperation LINE_GET_COUNTRY = {"LineGetCountry", "lineGetCountry", NOTHING, "\n"};
constexpr STapiOperation LINE_GET_DEV_CAPS = {"LineGetDevCaps", "MLineGetDevCaps", SERVICE, "\n"};
constexpr STapiOperation LINE_GET_DEV_CONFIG = {"LineGetDevConfig", "MLineGetDevConfig", SERVICE,
                                                "\n"};
constexpr STapiOperation LINE_GET_ICON = {"LineGetIcon", "lineGetIcon", SERVICE, "\n"};
constexpr STapiOperation LINE_GET_LINE_DEV_STATUS = {"LineGetLineDevStatus", "lineGetLineDevStatus",
                                                     LINE, "\n"};
constexpr STapiOperation LINE_GET_REQUEST = {"LineGetRequest", "lineGetRequest", SERVICE, "\n"};
constexpr STapiOperation LINE_GET_TRANSLATE_CAPS = {"LineGetTranslateCaps", "lineGetTranslateCaps",
                                                    SERVICE, "\n"};
constexpr STapiOperation LINE_REGISTER_REQUEST_RECIPIENT = {
    .szName = "LineRegisterRequestRecipient",
    .szFunction = "lineRegisterRequestRecipient",
    .need = SERVICE,
    .szInitializeFailed = "MLineInitialize() failed returnint"};
constexpr STapiOperation LINE_SET_APP_PRIORITY = {"LineSetAppPriority", "lineSetAppPriority"};
constexpr STapiOperation LINE_SET_CURRENT_LOCATION = {"LineSetCurrentLocation",
                                                      "lineSetCurrentLocation", SERVICE};
constexpr STapiOperation LINE_SET_DEV_CONFIG = {"LineSetDevConfig", "lineSetDevConfig", SERVICE};
constexpr STapiOperation LINE_SET_TOLL_LIST = {"LineSetTollList", "lineSetTollList", SERVICE};
constexpr STapiOperation LINE_TRANSLATE_ADDRESS = {"LineTranslateAddress", "lineTranslateAddress",
                                                   SERVICE};
constexpr STapiOperation LINE_TRANSLATE_DIALOG = {"LineTranslateDialog", "lineTranslateDialog",
                                                  SERVICE};
constexpr STapiOperation M_LINE_GET_DEV_CAPS = {"MLineGetDevCaps", "lineGetDevCaps"};
constexpr STapiOperation M_LINE_GET_DEV_CONFIG = {"MLineGetDevConfig", "lineGetDevConfig"};

constexpr STapiResult CAPABILITIES = {sizeof(LINEDEVCAPS) + 1000};
constexpr STapiResult CONFIGURATION = {1024};
constexpr STapiResult COUNTRIES = {1024};
constexpr STapiResult LINE_STATUS = {sizeof(LINEDEVSTATUS) + 1000};
constexpr STapiResult TRANSLATE_CAPS = {sizeof(LINETRANSLATECAPS) + 1000};
constexpr STapiResult TRANSLATE_OUTPUT = {sizeof(LINETRANSLATEOUTPUT) + 1000};

} // namespace

LONG CVTapi::MLineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) {
    DWORD dwVersion = TAPI_API_VERSION;
    return ObtainResult(
        M_LINE_GET_DEV_CAPS, CAPABILITIES, ppCapabilities, [&](LINEDEVCAPS* capabilities) {
            return g_TapiLibrary.lineGetDevCaps(g_hLineApp, dwDeviceID,
                                                std::exchange(dwVersion, m_dwLineAPIVersion), 0u,
                                                capabilities);
        });
}

LONG CVTapi::MLineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) {
    return ObtainResult(M_LINE_GET_DEV_CONFIG, CONFIGURATION, ppConfig, [&](VARSTRING* config) {
        return g_TapiLibrary.lineGetDevConfig(dwDeviceID, config, szDeviceClass);
    });
}

LONG CVTapi::LineConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) {
    return Ask(LINE_CONFIG_DIALOG, [&] {
        return g_TapiLibrary.lineConfigDialog(dwDeviceID, hwndOwner, szDeviceClass);
    });
}

LONG CVTapi::LineConfigDialogEdit(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass,
                                  LPCVOID pConfigIn, DWORD dwSize, VARSTRING** ppConfigOut) {
    const CLock lock(m_CritSec);
    *ppConfigOut = nullptr;
    const LONG missing = Provide(LINE_CONFIG_DIALOG_EDIT);
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
    return ObtainResult(LINE_CONFIG_DIALOG_EDIT, CONFIGURATION, ppConfigOut, [&](VARSTRING* out) {
        return g_TapiLibrary.lineConfigDialogEdit(dwDeviceID, hwndOwner, szDeviceClass, pConfigIn,
                                                  dwSize, out);
    });
}

LONG CVTapi::LineGetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                LPDWORD pdwPriority) {
    *pdwPriority = 0;
    return Ask(LINE_GET_APP_PRIORITY, [&] {
        return g_TapiLibrary.lineGetAppPriority(szAppFilename, dwMediaMode, nullptr, dwRequestMode,
                                                nullptr, pdwPriority);
    });
}

LONG CVTapi::LineGetCountry(DWORD dwCountryID, LINECOUNTRYLIST** ppCountryList) {
    return Obtain(LINE_GET_COUNTRY, COUNTRIES, ppCountryList, [&](LINECOUNTRYLIST* list) {
        return g_TapiLibrary.lineGetCountry(dwCountryID, TAPI_API_VERSION, list);
    });
}

LONG CVTapi::LineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) {
    *ppCapabilities = nullptr;
    return Ask(LINE_GET_DEV_CAPS, [&] { return MLineGetDevCaps(dwDeviceID, ppCapabilities); });
}

LONG CVTapi::LineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) {
    *ppConfig = nullptr;
    return Ask(LINE_GET_DEV_CONFIG,
               [&] { return MLineGetDevConfig(dwDeviceID, ppConfig, szDeviceClass); });
}

LONG CVTapi::LineGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) {
    return Ask(LINE_GET_ICON,
               [&] { return g_TapiLibrary.lineGetIcon(dwDeviceID, szDeviceClass, phIcon); });
}

LONG CVTapi::LineGetLineDevStatus(LINEDEVSTATUS** ppLineDevStatus) {
    return Obtain(
        LINE_GET_LINE_DEV_STATUS, LINE_STATUS, ppLineDevStatus,
        [&](LINEDEVSTATUS* status) { return g_TapiLibrary.lineGetLineDevStatus(m_hLine, status); });
}

LONG CVTapi::LineGetRequest(DWORD dwRequestMode, LPVOID pRequestBuffer) {
    return Ask(LINE_GET_REQUEST, [&] {
        return g_TapiLibrary.lineGetRequest(g_hLineApp, dwRequestMode, pRequestBuffer);
    });
}

LONG CVTapi::LineGetTranslateCaps(LINETRANSLATECAPS** ppTranslateCaps) {
    return Obtain(LINE_GET_TRANSLATE_CAPS, TRANSLATE_CAPS, ppTranslateCaps,
                  [&](LINETRANSLATECAPS* capabilities) {
                      return g_TapiLibrary.lineGetTranslateCaps(g_hLineApp, TAPI_API_VERSION,
                                                                capabilities);
                  });
}

LONG CVTapi::LineRegisterRequestRecipient(DWORD dwRegistrationInstance, DWORD dwRequestMode,
                                          BOOL bEnable) {
    return Ask(LINE_REGISTER_REQUEST_RECIPIENT, [&] {
        return g_TapiLibrary.lineRegisterRequestRecipient(
            g_hLineApp, dwRegistrationInstance, dwRequestMode, static_cast<DWORD>(bEnable));
    });
}

LONG CVTapi::LineSetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                DWORD dwPriority) {
    return Ask(LINE_SET_APP_PRIORITY, [&] {
        return g_TapiLibrary.lineSetAppPriority(szAppFilename, dwMediaMode, nullptr, dwRequestMode,
                                                nullptr, dwPriority);
    });
}

LONG CVTapi::LineSetCurrentLocation(DWORD dwLocation) {
    return Ask(LINE_SET_CURRENT_LOCATION,
               [&] { return g_TapiLibrary.lineSetCurrentLocation(g_hLineApp, dwLocation); });
}

LONG CVTapi::LineSetDevConfig(DWORD dwDeviceID, LPCVOID pConfig, DWORD dwSize,
                              LPCSTR szDeviceClass) {
    return Ask(LINE_SET_DEV_CONFIG, [&] {
        return g_TapiLibrary.lineSetDevConfig(dwDeviceID, pConfig, dwSize, szDeviceClass);
    });
}

LONG CVTapi::LineSetTollList(LPCSTR szAddress, DWORD dwTollListOption) {
    return Ask(LINE_SET_TOLL_LIST, [&] {
        return g_TapiLibrary.lineSetTollList(g_hLineApp, 0u, szAddress, dwTollListOption);
    });
}

LONG CVTapi::LineTranslateAddress(LPCSTR szAddress, DWORD dwCard, DWORD dwTranslateOptions,
                                  LINETRANSLATEOUTPUT** ppTranslateOutput) {
    return Obtain(LINE_TRANSLATE_ADDRESS, TRANSLATE_OUTPUT, ppTranslateOutput,
                  [&](LINETRANSLATEOUTPUT* output) {
                      return g_TapiLibrary.lineTranslateAddress(g_hLineApp, 0u, TAPI_API_VERSION,
                                                                szAddress, dwCard,
                                                                dwTranslateOptions, output);
                  });
}

LONG CVTapi::LineTranslateDialog(HWND hwndOwner, LPCSTR szAddress) {
    return Ask(LINE_TRANSLATE_DIALOG, [&] {
        return g_TapiLibrary.lineTranslateDialog(g_hLineApp, 0u, TAPI_API_VERSION, hwndOwner,
                                                 szAddress);
    });
}
