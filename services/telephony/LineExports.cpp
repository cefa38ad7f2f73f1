// The functions of lines: what comes from the caller is checked here, the service does the rest.
#include "services/telephony/Exports.h"
#include "services/telephony/RecordFiller.h"
#include "services/telephony/Service.h"

using telephonyservice::Guard;
using telephonyservice::Service;

LONG lineInitialize(HLINEAPP* lphLineApp, HINSTANCE, LINECALLBACK lpfnCallback, LPCSTR,
                    LPDWORD lpdwNumDevs) {
    if (lphLineApp == nullptr || lpfnCallback == nullptr || lpdwNumDevs == nullptr)
        return LINEERR_INVALPOINTER;
    return Guard([&] { return Service().Initialize(lpfnCallback, *lphLineApp, *lpdwNumDevs); });
}

LONG lineShutdown(HLINEAPP hLineApp) {
    return Guard([&] { return Service().Shutdown(hLineApp); });
}

LONG lineNegotiateAPIVersion(HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPILowVersion,
                             DWORD dwAPIHighVersion, LPDWORD lpdwAPIVersion,
                             LINEEXTENSIONID* lpExtensionID) {
    if (lpdwAPIVersion == nullptr || lpExtensionID == nullptr)
        return LINEERR_INVALPOINTER;
    const LONG result = Service().CheckDevice(hLineApp, dwDeviceID);
    if (result != 0)
        return result;
    if (dwAPILowVersion > TAPI_API_VERSION || dwAPIHighVersion < TAPI_API_VERSION)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    *lpdwAPIVersion = TAPI_API_VERSION;
    *lpExtensionID = {};
    return 0;
}

LONG lineGetDevCaps(HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion, DWORD,
                    LINEDEVCAPS* lpLineDevCaps) {
    if (lpLineDevCaps == nullptr)
        return LINEERR_INVALPOINTER;
    if (dwAPIVersion != TAPI_API_VERSION)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    return Guard([&] { return Service().GetDevCaps(hLineApp, dwDeviceID, lpLineDevCaps); });
}

LONG lineOpen(HLINEAPP hLineApp, DWORD dwDeviceID, HLINE* lphLine, DWORD dwAPIVersion, DWORD,
              DWORD_PTR dwCallbackInstance, DWORD dwPrivileges, DWORD dwMediaModes,
              const LINECALLPARAMS*) {
    if (lphLine == nullptr)
        return LINEERR_INVALPOINTER;
    if (dwAPIVersion != TAPI_API_VERSION)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    return Guard([&] {
        return Service().Open(hLineApp, dwDeviceID, dwCallbackInstance, dwPrivileges, dwMediaModes,
                              *lphLine);
    });
}

LONG lineClose(HLINE hLine) {
    return Guard([&] { return Service().Close(hLine); });
}

LONG lineSetStatusMessages(HLINE hLine, DWORD, DWORD) {
    // A device that goes is noticed on its port; there is no other state to tell of.
    return Service().CheckLine(hLine);
}

LONG lineGetLineDevStatus(HLINE hLine, LINEDEVSTATUS* lpLineDevStatus) {
    if (lpLineDevStatus == nullptr)
        return LINEERR_INVALPOINTER;
    return Guard([&] { return Service().GetLineDevStatus(hLine, lpLineDevStatus); });
}

LONG lineGetNewCalls(HLINE hLine, DWORD dwAddressID, DWORD dwSelect, LINECALLLIST* lpCallList) {
    if (lpCallList == nullptr)
        return LINEERR_INVALPOINTER;
    if (dwSelect != LINECALLSELECT_LINE && dwSelect != LINECALLSELECT_ADDRESS)
        return LINEERR_INVALCALLSELECT;
    if (dwSelect == LINECALLSELECT_ADDRESS && dwAddressID != 0)
        return LINEERR_INVALADDRESSID;
    const LONG result = Service().CheckLine(hLine);
    if (result != 0)
        return result;
    // A call belongs to the line that made it, whose program knows it: none is ever new.
    const telephonyservice::CRecordFiller filler(lpCallList);
    return filler.HasRoom() ? 0 : LINEERR_STRUCTURETOOSMALL;
}
