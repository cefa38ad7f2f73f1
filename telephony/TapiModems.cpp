// How CVTapi finds modems: by going through the line devices, by name, in the registry.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "platform/Error.h"
#include "platform/Version.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiService.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr TapiOperation kLineDeviceNameToID = {"LineDeviceNameToID", nullptr,
                                               ETapiNeed::LineService, "\n"};
constexpr TapiOperation kPhoneDeviceNameToID = {.szName = "PhoneDeviceNameToID",
                                                .szFunction = nullptr,
                                                .need = ETapiNeed::PhoneService,
                                                .szInitializeFailed =
                                                    "MPhoneInitialize() failed returning"};

// A platform's modems are numbered below this key.
struct ModemClass {
    DWORD dwPlatformId;
    LPCSTR szKeyFormat;
};
constexpr ModemClass kModemClasses[] = {
    {VER_PLATFORM_WIN32_NT,
     "System\\CurrentControlSet\\Control\\Class\\{4D36E96D-E325-11CE-BFC1-08002BE10318}\\%0.4ld"},
    {VER_PLATFORM_WIN32_WINDOWS, "System\\CurrentControlSet\\Services\\Class\\Modem\\%0.4ld"},
};
constexpr DWORD kFirstMajorVersion = 4; // before it modems were no class

LPCSTR KeyFormatOf(const OSVERSIONINFOA& version) {
    if (version.dwMajorVersion < kFirstMajorVersion)
        return nullptr;
    const auto* const found =
        std::ranges::find(kModemClasses, version.dwPlatformId, &ModemClass::dwPlatformId);
    return found != std::end(kModemClasses) ? found->szKeyFormat : nullptr;
}

bool IsDataModem(const LINEDEVCAPS& capabilities) {
    return (capabilities.dwBearerModes & LINEBEARERMODE_VOICE) &&
           (capabilities.dwMediaModes & LINEMEDIAMODE_DATAMODEM) &&
           (capabilities.dwLineFeatures & LINEFEATURE_MAKECALL) && LineNameOf(capabilities);
}

// The first of so many devices whose capabilities, as get(device, out) obtains them, have the name.
template <class Record, class NameOf, class Get>
LONG FindDevice(const TapiOperation& operation, LPCSTR szName, DWORD dwCount, LPDWORD pdwDeviceID,
                NameOf nameOf, Get get) {
    for (DWORD dwDeviceID = 0; dwDeviceID < dwCount; ++dwDeviceID) {
        Record* capabilities = nullptr;
        if (get(dwDeviceID, &capabilities) < 0)
            continue;
        const CTaskMemory<Record> owner(capabilities);
        if (nameOf(*capabilities) != szName)
            continue;
        *pdwDeviceID = dwDeviceID;
        DebugTrace("CVTapi::%s() - Device \"%s\" = %ld\n", operation.szName, szName,
                   static_cast<long>(dwDeviceID));
        return 0;
    }
    DebugError("CVTapi::%s() - Device \"%s\" not found%s", operation.szName, szName,
               operation.szEnd);
    return E_TAPI_NODEVICE;
}

void CopyName(std::string_view name, char* szName, DWORD dwSize) {
    if (dwSize == 0)
        return;
    const std::size_t length = std::min<std::size_t>(name.size(), dwSize - 1);
    std::ranges::copy(name.substr(0, length), szName);
    szName[length] = '\0';
}

} // namespace

LONG CVTapi::IterateModems(char* szName, DWORD dwSize, BOOL bRestart) {
    const CLock lock(m_CritSec);
    const LONG missing = CheckStatus(
        "CVTapi::IterateModems() - MLineInitialize() failed returning %#08lx\n", MLineInitialize());
    if (missing < 0)
        return missing;
    if (bRestart)
        m_dwModemIndex = 0;
    while (m_dwModemIndex < g_dwNumLineDevs) {
        LINEDEVCAPS* capabilities = nullptr;
        CheckStatus("CVTapi::IterateModems() - MLineGetDevCaps() failed returning %#08lx\n",
                    MLineGetDevCaps(m_dwModemIndex++, &capabilities));
        const CTaskMemory<LINEDEVCAPS> owner(capabilities);
        if (!capabilities || !IsDataModem(*capabilities))
            continue;
        CopyName(*LineNameOf(*capabilities), szName, dwSize);
        return 0;
    }
    DebugTrace("CVTapi::IterateModems() - No Tapi devices found\n");
    return E_TAPI_NODEVICE;
}

LONG CVTapi::LineDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) {
    const CLock lock(m_CritSec);
    const LONG missing = Provide(kLineDeviceNameToID);
    if (missing != 0)
        return missing;
    return FindDevice<LINEDEVCAPS>(
        kLineDeviceNameToID, szName, g_dwNumLineDevs, pdwDeviceID, LineNameOf,
        [&](DWORD dwDeviceID, LINEDEVCAPS** out) { return MLineGetDevCaps(dwDeviceID, out); });
}

LONG CVTapi::PhoneDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) {
    const CLock lock(m_CritSec);
    const LONG missing = Provide(kPhoneDeviceNameToID);
    if (missing != 0)
        return missing;
    return FindDevice<PHONECAPS>(
        kPhoneDeviceNameToID, szName, g_dwNumPhoneDevs, pdwDeviceID, PhoneNameOf,
        [&](DWORD dwDeviceID, PHONECAPS** out) { return MPhoneGetDevCaps(dwDeviceID, out); });
}

LONG CVTapi::GetModemRegKey(DWORD dwInstance, HKEY* phKey) {
    *phKey = nullptr;
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExA(&version)) {
        DebugError("CVTapi::GetModemRegKey() - GetVersionEx() failed - GetLastError() = %ld\n",
                   static_cast<long>(GetLastError()));
        return E_TAPI_FAILED;
    }
    const LPCSTR szKeyFormat = KeyFormatOf(version);
    if (!szKeyFormat) {
        DebugError("CVTapi::GetModemRegKey() - Unknown OS version\n");
        return E_TAPI_FAILED;
    }
    char szKey[128];
    std::snprintf(szKey, sizeof szKey, szKeyFormat, static_cast<long>(dwInstance));
    const LONG lResult = RegOpenKeyExA(HKEY_LOCAL_MACHINE, szKey, 0, KEY_ALL_ACCESS, phKey);
    if (lResult != 0) {
        DebugError("CVTapi::GetModemRegKey() - RegOpenKeyEx() failed returning %ld\n",
                   static_cast<long>(lResult));
        return E_TAPI_FAILED;
    }
    return 0;
}
