// The functions of calls: what comes from the caller is checked here, the service does the rest.
#include "services/telephony/Exports.h"
#include "services/telephony/Service.h"

using telephonyservice::Guard;
using telephonyservice::Service;

LONG lineMakeCall(HLINE hLine, HCALL* lphCall, LPCSTR lpszDestAddress, DWORD,
                  const LINECALLPARAMS* lpCallParams) {
    if (lphCall == nullptr)
        return LINEERR_INVALPOINTER;
    const LONG line = Service().CheckLine(hLine);
    if (line != 0)
        return line;
    // Without parameters it would be a call of voice.
    if (lpCallParams == nullptr)
        return LINEERR_INVALBEARERMODE;
    if (lpCallParams->dwTotalSize < sizeof(LINECALLPARAMS))
        return LINEERR_STRUCTURETOOSMALL;
    if (lpCallParams->dwBearerMode != LINEBEARERMODE_PASSTHROUGH)
        return LINEERR_INVALBEARERMODE;
    // The device is handed over unconnected: nobody would dial the number.
    if (lpszDestAddress != nullptr && lpszDestAddress[0] != '\0')
        return LINEERR_INVALADDRESS;
    return Guard([&] { return Service().MakeCall(hLine, *lpCallParams, lphCall); });
}

LONG lineDrop(HCALL hCall, LPCSTR, DWORD) {
    return Guard([&] { return Service().Drop(hCall); });
}

LONG lineDeallocateCall(HCALL hCall) {
    return Guard([&] { return Service().DeallocateCall(hCall); });
}

LONG lineGetCallInfo(HCALL hCall, LINECALLINFO* lpCallInfo) {
    if (lpCallInfo == nullptr)
        return LINEERR_INVALPOINTER;
    return Guard([&] { return Service().GetCallInfo(hCall, lpCallInfo); });
}

LONG lineGetCallStatus(HCALL hCall, LINECALLSTATUS* lpCallStatus) {
    if (lpCallStatus == nullptr)
        return LINEERR_INVALPOINTER;
    return Guard([&] { return Service().GetCallStatus(hCall, lpCallStatus); });
}

LONG lineGetID(HLINE hLine, DWORD dwAddressID, HCALL hCall, DWORD dwSelect, VARSTRING* lpDeviceID,
               LPCSTR lpszDeviceClass) {
    if (lpDeviceID == nullptr || lpszDeviceClass == nullptr)
        return LINEERR_INVALPOINTER;
    if (dwSelect == LINECALLSELECT_ADDRESS && dwAddressID != 0)
        return LINEERR_INVALADDRESSID;
    return Guard(
        [&] { return Service().GetId(hLine, hCall, dwSelect, lpDeviceID, lpszDeviceClass); });
}
