// CVTapi's wrappers of what can be done with the call.
#include "telephony/Tapi.h"
#include "telephony/TapiService.h"

namespace {

constexpr ETapiNeed kCall = ETapiNeed::Call;

constexpr TapiOperation kLineAnswer = {"LineAnswer", "lineAnswer", kCall, "\n"};
constexpr TapiOperation kLineBlindTransfer = {"LineBlindTransfer", "lineBlindTransfer", kCall,
                                              "\n"};
constexpr TapiOperation kLineDial = {"LineDial", "lineDial", kCall, "\n"};
constexpr TapiOperation kLineGatherDigits = {"LineGatherDigits", "lineGatherDigits", kCall, "\n"};
constexpr TapiOperation kLineGenerateDigits = {"LineGenerateDigits", "lineGenerateDigits", kCall,
                                               "\n"};
constexpr TapiOperation kLineGetCallInfo = {"LineGetCallInfo", "lineGetCallInfo", kCall, "\n"};
constexpr TapiOperation kLineGetCallStatus = {"LineGetCallStatus", "lineGetCallStatus", kCall,
                                              "\n"};
constexpr TapiOperation kLineHandoff = {"LineHandoff", "lineHandoff", kCall, "\n"};
constexpr TapiOperation kLineHold = {"LineHold", "lineHold", kCall, "\n"};
constexpr TapiOperation kLineMonitorDigits = {"LineMonitorDigits", "lineMonitorDigits", kCall,
                                              "\n"};
constexpr TapiOperation kLineMonitorMedia = {"LineMonitorMedia", "lineMonitorMedia", kCall, "\n"};
constexpr TapiOperation kLineSetAppSpecific = {"LineSetAppSpecific", "lineSetAppSpecific", kCall};
constexpr TapiOperation kLineSetCallParams = {"LineSetCallParams", "lineSetCallParams", kCall};
constexpr TapiOperation kLineSetCallPrivilege = {"LineSetCallPrivilege", "lineSetCallPrivilege",
                                                 kCall};
constexpr TapiOperation kLineSetMediaMode = {"LineSetMediaMode", "lineSetMediaMode", kCall};
constexpr TapiOperation kLineUnhold = {"LineUnhold", "lineUnhold", kCall};

constexpr TapiRecordRule kCallInfo = {sizeof(LINECALLINFO) + 1000};
constexpr TapiRecordRule kCallStatus = {sizeof(LINECALLSTATUS) + 1000};

} // namespace

LONG CVTapi::LineAnswer(BOOL bWait) {
    return AskAndWait(kLineAnswer, bWait,
                      [&] { return g_TapiLibrary.lineAnswer(m_hCall, nullptr, 0u); });
}

LONG CVTapi::LineBlindTransfer(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) {
    return AskAndWait(kLineBlindTransfer, bWait, [&] {
        return g_TapiLibrary.lineBlindTransfer(m_hCall, szDestination, dwCountryCode);
    });
}

LONG CVTapi::LineDial(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) {
    return AskAndWait(kLineDial, bWait, [&] {
        return g_TapiLibrary.lineDial(m_hCall, szDestination, dwCountryCode);
    });
}

LONG CVTapi::LineGatherDigits(DWORD dwDigitModes, char* pDigits, DWORD dwNumDigits,
                              LPCSTR szTerminationDigits, DWORD dwFirstDigitTimeout,
                              DWORD dwInterDigitTimeout) {
    return Ask(kLineGatherDigits, [&] {
        return g_TapiLibrary.lineGatherDigits(m_hCall, dwDigitModes, pDigits, dwNumDigits,
                                              szTerminationDigits, dwFirstDigitTimeout,
                                              dwInterDigitTimeout);
    });
}

LONG CVTapi::LineGenerateDigits(DWORD dwDigitMode, LPCSTR szDigits, DWORD dwDuration) {
    return Ask(kLineGenerateDigits, [&] {
        return g_TapiLibrary.lineGenerateDigits(m_hCall, dwDigitMode, szDigits, dwDuration);
    });
}

LONG CVTapi::LineGetCallInfo(LINECALLINFO** ppCallInfo) {
    return Obtain(kLineGetCallInfo, kCallInfo, ppCallInfo,
                  [&](LINECALLINFO* info) { return g_TapiLibrary.lineGetCallInfo(m_hCall, info); });
}

LONG CVTapi::LineGetCallStatus(LINECALLSTATUS** ppCallStatus) {
    return Obtain(kLineGetCallStatus, kCallStatus, ppCallStatus, [&](LINECALLSTATUS* status) {
        return g_TapiLibrary.lineGetCallStatus(m_hCall, status);
    });
}

LONG CVTapi::LineHandoff(LPCSTR szFileName, DWORD dwMediaMode) {
    return Ask(kLineHandoff,
               [&] { return g_TapiLibrary.lineHandoff(m_hCall, szFileName, dwMediaMode); });
}

LONG CVTapi::LineHold(BOOL bWait) {
    return AskAndWait(kLineHold, bWait, [&] { return g_TapiLibrary.lineHold(m_hCall); });
}

LONG CVTapi::LineMonitorDigits(DWORD dwDigitModes) {
    return Ask(kLineMonitorDigits,
               [&] { return g_TapiLibrary.lineMonitorDigits(m_hCall, dwDigitModes); });
}

LONG CVTapi::LineMonitorMedia(DWORD dwMediaModes) {
    return Ask(kLineMonitorMedia,
               [&] { return g_TapiLibrary.lineMonitorMedia(m_hCall, dwMediaModes); });
}

LONG CVTapi::LineSetAppSpecific(DWORD dwAppSpecific) {
    return Ask(kLineSetAppSpecific,
               [&] { return g_TapiLibrary.lineSetAppSpecific(m_hCall, dwAppSpecific); });
}

LONG CVTapi::LineSetCallParams(DWORD dwBearerMode, DWORD dwMinRate, DWORD dwMaxRate,
                               const LINEDIALPARAMS* pDialParams, BOOL bWait) {
    return AskAndWait(kLineSetCallParams, bWait, [&] {
        return g_TapiLibrary.lineSetCallParams(m_hCall, dwBearerMode, dwMinRate, dwMaxRate,
                                               pDialParams);
    });
}

LONG CVTapi::LineSetCallPrivilege(DWORD dwCallPrivilege) {
    return Ask(kLineSetCallPrivilege,
               [&] { return g_TapiLibrary.lineSetCallPrivilege(m_hCall, dwCallPrivilege); });
}

LONG CVTapi::LineSetMediaMode(DWORD dwMediaModes) {
    return Ask(kLineSetMediaMode,
               [&] { return g_TapiLibrary.lineSetMediaMode(m_hCall, dwMediaModes); });
}

LONG CVTapi::LineUnhold(BOOL bWait) {
    return AskAndWait(kLineUnhold, bWait, [&] { return g_TapiLibrary.lineUnhold(m_hCall); });
}
