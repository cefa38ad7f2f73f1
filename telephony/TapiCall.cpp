// CVTapi's wrappers of what can be done with the call.
#include "telephony/Tapi.h"
#include "telephony/TapiService.h"

namespace {

constexpr ETapiNeed CALL = ETapiNeed::Call;

constexpr STapiOperation LINE_ANSWER = {"LineAnswer", "lineAnswer", CALL, "\n"};
constexpr STapiOperation LINE_BLIND_TRANSFER = {"LineBlindTransfer", "lineBlindTransfer", CALL,
                                                "\n"};
constexpr STapiOperation LINE_DIAL = {"LineDial", "lineDial", CALL, "\n"};
constexpr STapiOperation LINE_GATHER_DIGITS = {"LineGatherDigits", "lineGatherDigits", CALL, "\n"};
constexpr STapiOperation LINE_GENERATE_DIGITS = {"LineGenerateDigits", "lineGenerateDigits", CALL,
                                                 "\n"};
constexpr STapiOperation LINE_GET_CALL_INFO = {"LineGetCallInfo", "lineGetCallInfo", CALL, "\n"};
constexpr STapiOperation LINE_GET_CALL_STATUS = {"LineGetCallStatus", "lineGetCallStatus", CALL,
                                                 "\n"};
constexpr STapiOperation LINE_HANDOFF = {"LineHandoff", "lineHandoff", CALL, "\n"};
constexpr STapiOperation LINE_HOLD = {"LineHold", "lineHold", CALL, "\n"};
constexpr STapiOperation LINE_MONITOR_DIGITS = {"LineMonitorDigits", "lineMonitorDigits", CALL,
                                                "\n"};
constexpr STapiOperation LINE_MONITOR_MEDIA = {"LineMonitorMedia", "lineMonitorMedia", CALL, "\n"};
constexpr STapiOperation LINE_SET_APP_SPECIFIC = {"LineSetAppSpecific", "lineSetAppSpecific", CALL};
constexpr STapiOperation LINE_SET_CALL_PARAMS = {"LineSetCallParams", "lineSetCallParams", CALL};
constexpr STapiOperation LINE_SET_CALL_PRIVILEGE = {"LineSetCallPrivilege", "lineSetCallPrivilege",
                                                    CALL};
constexpr STapiOperation LINE_SET_MEDIA_MODE = {"LineSetMediaMode", "lineSetMediaMode", CALL};
constexpr STapiOperation LINE_UNHOLD = {"LineUnhold", "lineUnhold", CALL};

constexpr STapiResult CALL_INFO = {sizeof(LINECALLINFO) + 1000};
constexpr STapiResult CALL_STATUS = {sizeof(LINECALLSTATUS) + 1000};

} // namespace

LONG CVTapi::LineAnswer(BOOL bWait) {
    return AskAndWait(LINE_ANSWER, bWait,
                      [&] { return g_TapiLibrary.lineAnswer(m_hCall, nullptr, 0u); });
}

LONG CVTapi::LineBlindTransfer(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) {
    return AskAndWait(LINE_BLIND_TRANSFER, bWait, [&] {
        return g_TapiLibrary.lineBlindTransfer(m_hCall, szDestination, dwCountryCode);
    });
}

LONG CVTapi::LineDial(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) {
    return AskAndWait(LINE_DIAL, bWait, [&] {
        return g_TapiLibrary.lineDial(m_hCall, szDestination, dwCountryCode);
    });
}

LONG CVTapi::LineGatherDigits(DWORD dwDigitModes, char* pDigits, DWORD dwNumDigits,
                              LPCSTR szTerminationDigits, DWORD dwFirstDigitTimeout,
                              DWORD dwInterDigitTimeout) {
    return Ask(LINE_GATHER_DIGITS, [&] {
        return g_TapiLibrary.lineGatherDigits(m_hCall, dwDigitModes, pDigits, dwNumDigits,
                                              szTerminationDigits, dwFirstDigitTimeout,
                                              dwInterDigitTimeout);
    });
}

LONG CVTapi::LineGenerateDigits(DWORD dwDigitMode, LPCSTR szDigits, DWORD dwDuration) {
    return Ask(LINE_GENERATE_DIGITS, [&] {
        return g_TapiLibrary.lineGenerateDigits(m_hCall, dwDigitMode, szDigits, dwDuration);
    });
}

LONG CVTapi::LineGetCallInfo(LINECALLINFO** ppCallInfo) {
    return Obtain(LINE_GET_CALL_INFO, CALL_INFO, ppCallInfo,
                  [&](LINECALLINFO* info) { return g_TapiLibrary.lineGetCallInfo(m_hCall, info); });
}

LONG CVTapi::LineGetCallStatus(LINECALLSTATUS** ppCallStatus) {
    return Obtain(LINE_GET_CALL_STATUS, CALL_STATUS, ppCallStatus, [&](LINECALLSTATUS* status) {
        return g_TapiLibrary.lineGetCallStatus(m_hCall, status);
    });
}

LONG CVTapi::LineHandoff(LPCSTR szFileName, DWORD dwMediaMode) {
    return Ask(LINE_HANDOFF,
               [&] { return g_TapiLibrary.lineHandoff(m_hCall, szFileName, dwMediaMode); });
}

LONG CVTapi::LineHold(BOOL bWait) {
    return AskAndWait(LINE_HOLD, bWait, [&] { return g_TapiLibrary.lineHold(m_hCall); });
}

LONG CVTapi::LineMonitorDigits(DWORD dwDigitModes) {
    return Ask(LINE_MONITOR_DIGITS,
               [&] { return g_TapiLibrary.lineMonitorDigits(m_hCall, dwDigitModes); });
}

LONG CVTapi::LineMonitorMedia(DWORD dwMediaModes) {
    return Ask(LINE_MONITOR_MEDIA,
               [&] { return g_TapiLibrary.lineMonitorMedia(m_hCall, dwMediaModes); });
}

LONG CVTapi::LineSetAppSpecific(DWORD dwAppSpecific) {
    return Ask(LINE_SET_APP_SPECIFIC,
               [&] { return g_TapiLibrary.lineSetAppSpecific(m_hCall, dwAppSpecific); });
}

LONG CVTapi::LineSetCallParams(DWORD dwBearerMode, DWORD dwMinRate, DWORD dwMaxRate,
                               const LINEDIALPARAMS* pDialParams, BOOL bWait) {
    return AskAndWait(LINE_SET_CALL_PARAMS, bWait, [&] {
        return g_TapiLibrary.lineSetCallParams(m_hCall, dwBearerMode, dwMinRate, dwMaxRate,
                                               pDialParams);
    });
}

LONG CVTapi::LineSetCallPrivilege(DWORD dwCallPrivilege) {
    return Ask(LINE_SET_CALL_PRIVILEGE,
               [&] { return g_TapiLibrary.lineSetCallPrivilege(m_hCall, dwCallPrivilege); });
}

LONG CVTapi::LineSetMediaMode(DWORD dwMediaModes) {
    return Ask(LINE_SET_MEDIA_MODE,
               [&] { return g_TapiLibrary.lineSetMediaMode(m_hCall, dwMediaModes); });
}

LONG CVTapi::LineUnhold(BOOL bWait) {
    return AskAndWait(LINE_UNHOLD, bWait, [&] { return g_TapiLibrary.lineUnhold(m_hCall); });
}
