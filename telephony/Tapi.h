// CVTapi: the wrapper around the telephony service, behind ITapi.
//
// Made by CreateTapi and held through ITapi; an outer object that aggregates it gets at the inner
// face, to query and delete it, by dynamic_cast<CVComponent*> of the interface. The services and
// the library are shared (see TapiService.h): the last object that goes takes them down, a line or
// phone that is still open included; any other object closes what it has open.
//
// Any thread may call; the lock is held by every operation but GetModemRegKey, waits included. The
// callbacks take no lock: they run inside a wait, on the thread that the object belongs to (see
// ITapi.h). Lock order: the object's, then g_TapiLock.
#pragma once

#include "common/Component.h"
#include "common/CriticalSection.h"
#include "telephony/ITapi.h"
#include "telephony/TapiInstances.h"
#include "telephony/TapiReply.h"
#include "telephony/TapiResult.h"

class CVTapi final : public CVComponent, public CVDelegated<ITapi>, private TapiInstance {
  public:
    explicit CVTapi(IUnknown* pUnkOuter);
    ~CVTapi() override;

    // Whether the telephony library can be loaded: 0 when it cannot.
    static BOOL LoadTapi();

    // ITapi
    LONG IterateModems(char* szName, DWORD dwSize, BOOL bRestart) override;
    LONG GetModemRegKey(DWORD dwInstance, HKEY* phKey) override;
    LONG LineAnswer(BOOL bWait) override;
    LONG LineBlindTransfer(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) override;
    LONG LineClose() override;
    LONG LineConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) override;
    LONG LineConfigDialogEdit(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass,
                              LPCVOID pConfigIn, DWORD dwSize, VARSTRING** ppConfigOut) override;
    LONG LineDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) override;
    LONG LineDial(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) override;
    LONG LineDrop(BOOL bWait) override;
    LONG LineGatherDigits(DWORD dwDigitModes, char* pDigits, DWORD dwNumDigits,
                          LPCSTR szTerminationDigits, DWORD dwFirstDigitTimeout,
                          DWORD dwInterDigitTimeout) override;
    LONG LineGenerateDigits(DWORD dwDigitMode, LPCSTR szDigits, DWORD dwDuration) override;
    LONG LineGetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                            LPDWORD pdwPriority) override;
    LONG LineGetCallInfo(LINECALLINFO** ppCallInfo) override;
    LONG LineGetCallStatus(LINECALLSTATUS** ppCallStatus) override;
    LONG LineGetCountry(DWORD dwCountryID, LINECOUNTRYLIST** ppCountryList) override;
    LONG LineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) override;
    LONG LineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) override;
    LONG LineGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) override;
    LONG LineGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) override;
    LONG LineGetLineDevStatus(LINEDEVSTATUS** ppLineDevStatus) override;
    LONG LineGetRequest(DWORD dwRequestMode, LPVOID pRequestBuffer) override;
    LONG LineGetTranslateCaps(LINETRANSLATECAPS** ppTranslateCaps) override;
    LONG LineHandoff(LPCSTR szFileName, DWORD dwMediaMode) override;
    LONG LineHold(BOOL bWait) override;
    LONG LineMakeCall(LPCSTR szDestination, DWORD dwCountryCode, const LINECALLPARAMS* pCallParams,
                      BOOL bWait) override;
    LONG LineMonitorDigits(DWORD dwDigitModes) override;
    LONG LineMonitorMedia(DWORD dwMediaModes) override;
    LONG LineOpen(DWORD dwDeviceID, DWORD dwPrivileges, DWORD dwMediaModes) override;
    LONG LineRegisterRequestRecipient(DWORD dwRegistrationInstance, DWORD dwRequestMode,
                                      BOOL bEnable) override;
    LONG LineSetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                            DWORD dwPriority) override;
    LONG LineSetAppSpecific(DWORD dwAppSpecific) override;
    LONG LineSetCallParams(DWORD dwBearerMode, DWORD dwMinRate, DWORD dwMaxRate,
                           const LINEDIALPARAMS* pDialParams, BOOL bWait) override;
    LONG LineSetCallPrivilege(DWORD dwCallPrivilege) override;
    LONG LineSetCurrentLocation(DWORD dwLocation) override;
    LONG LineSetDevConfig(DWORD dwDeviceID, LPCVOID pConfig, DWORD dwSize,
                          LPCSTR szDeviceClass) override;
    LONG LineSetMediaMode(DWORD dwMediaModes) override;
    LONG LineSetTollList(LPCSTR szAddress, DWORD dwTollListOption) override;
    LONG LineSetUserCallback(LINECALLBACK pfnCallback, DWORD_PTR dwInstance) override;
    LONG LineTranslateAddress(LPCSTR szAddress, DWORD dwCard, DWORD dwTranslateOptions,
                              LINETRANSLATEOUTPUT** ppTranslateOutput) override;
    LONG LineTranslateDialog(HWND hwndOwner, LPCSTR szAddress) override;
    LONG LineUnhold(BOOL bWait) override;
    LONG PhoneClose() override;
    LONG PhoneConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) override;
    LONG PhoneDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) override;
    LONG PhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) override;
    LONG PhoneGetGain(DWORD dwHookSwitchDev, LPDWORD pdwGain) override;
    LONG PhoneGetHookSwitch(LPDWORD pdwHookSwitchDevs) override;
    LONG PhoneGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) override;
    LONG PhoneGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) override;
    LONG PhoneGetRing(LPDWORD pdwRingMode, LPDWORD pdwVolume) override;
    LONG PhoneGetStatus(PHONESTATUS** ppPhoneStatus) override;
    LONG PhoneGetVolume(DWORD dwHookSwitchDev, LPDWORD pdwVolume) override;
    LONG PhoneOpen(DWORD dwDeviceID, DWORD dwPrivilege) override;
    LONG PhoneSetGain(DWORD dwHookSwitchDev, DWORD dwGain, BOOL bWait) override;
    LONG PhoneSetHookSwitch(DWORD dwHookSwitchDevs, DWORD dwHookSwitchMode, BOOL bWait) override;
    LONG PhoneSetUserCallback(PHONECALLBACK pfnCallback, DWORD_PTR dwInstance) override;
    LONG PhoneSetVolume(DWORD dwHookSwitchDev, DWORD dwVolume, BOOL bWait) override;

  protected:
    void* FindInterface(const IID& riid) override;

  private:
    // The wrappers, all alike: what the row needs, then request(), which asks the service. With a
    // wait the reply follows; Obtain hands out the record that fill(Record*) asks for.
    template <class Request> LONG Ask(const TapiOperation& operation, Request request);
    template <class Request>
    LONG AskAndWait(const TapiOperation& operation, BOOL bWait, Request request);
    template <class Record, class Fill>
    LONG Obtain(const TapiOperation& operation, const TapiRecordRule& rule, Record** ppResult,
                Fill fill);

    // With the object's lock held. 0, or what is missing, reported.
    LONG Provide(const TapiOperation& operation);
    // The result of the wait for a request's reply; a failure is reported.
    LONG Await(const TapiOperation& operation, LONG lRequestID);

    // The line service
    LONG MLineInitialize();
    static LONG MLineShutdown();
    LONG MLineNegotiateAPIVersion(DWORD dwDeviceID, LPDWORD pdwAPIVersion);
    LONG MLineWaitForReply(DWORD dwRequestID, DWORD dwTimeout);
    void MLineCallback(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR dwParam1,
                       DWORD_PTR dwParam2, DWORD_PTR dwParam3);
    static void LineCallbackProc(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance,
                                 DWORD_PTR dwParam1, DWORD_PTR dwParam2, DWORD_PTR dwParam3);
    void FollowCallState(HCALL hCall, DWORD dwCallState);
    TapiReply LineReply();

    // Lines; the object's lock is held.
    LONG MLineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities);
    LONG MLineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass);
    LONG MLineGetNewCalls();
    LONG MLineOpen(DWORD dwDeviceID, DWORD dwPrivileges, DWORD dwMediaModes);
    LONG MLineClose();
    void TakeCalls(const LINECALLLIST& calls);

    // The phone service
    LONG MPhoneInitialize();
    static LONG MPhoneShutdown();
    LONG MPhoneNegotiateAPIVersion(DWORD dwDeviceID, LPDWORD pdwAPIVersion);
    LONG MPhoneWaitForReply(DWORD dwRequestID, DWORD dwTimeout);
    void MPhoneCallback(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance, DWORD_PTR dwParam1,
                        DWORD_PTR dwParam2, DWORD_PTR dwParam3);
    static void PhoneCallbackProc(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance,
                                  DWORD_PTR dwParam1, DWORD_PTR dwParam2, DWORD_PTR dwParam3);
    TapiReply PhoneReply();

    // Phones; the object's lock is held.
    LONG MPhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities);
    LONG MPhoneOpen(DWORD dwDeviceID, DWORD dwPrivilege);
    LONG MPhoneClose();

    // The object of a message's instance value; null when there is none (any more).
    static CVTapi* FindObject(DWORD_PTR dwInstance);
    DWORD_PTR Instance() { return reinterpret_cast<DWORD_PTR>(static_cast<TapiInstance*>(this)); }

    DWORD m_dwModemIndex = 0;
    HLINE m_hLine = 0;
    DWORD m_dwLineAPIVersion = TAPI_API_VERSION;
    LINECALLBACK m_pfnLineCallback = nullptr;
    DWORD_PTR m_dwLineCallbackInstance = 0;
    HCALL m_hCall = 0; // the service stores it here when it accepts a call
    BOOL m_bLineWaiting = FALSE;
    DWORD m_dwLineRequestID = 0;
    BOOL m_bLineReplied = FALSE;
    LONG m_lLineReplyResult = 0;
    HPHONE m_hPhone = 0;
    DWORD m_dwPhoneAPIVersion = TAPI_API_VERSION;
    PHONECALLBACK m_pfnPhoneCallback = nullptr;
    DWORD_PTR m_dwPhoneCallbackInstance = 0;
    BOOL m_bPhoneWaiting = FALSE;
    DWORD m_dwPhoneRequestID = 0;
    BOOL m_bPhoneReplied = FALSE;
    LONG m_lPhoneReplyResult = 0;
    CCriticalSection m_CritSec;
};

template <class Request> LONG CVTapi::Ask(const TapiOperation& operation, Request request) {
    return AskAndWait(operation, FALSE, request);
}

template <class Request>
LONG CVTapi::AskAndWait(const TapiOperation& operation, BOOL bWait, Request request) {
    const CLock lock(m_CritSec);
    const LONG missing = Provide(operation);
    if (missing != 0)
        return missing;
    const LONG status = CheckResult(operation, request());
    return bWait && status >= 0 ? Await(operation, status) : status;
}

template <class Record, class Fill>
LONG CVTapi::Obtain(const TapiOperation& operation, const TapiRecordRule& rule, Record** ppResult,
                    Fill fill) {
    const CLock lock(m_CritSec);
    *ppResult = nullptr;
    const LONG missing = Provide(operation);
    return missing != 0 ? missing : ObtainResult(operation, rule, ppResult, fill);
}
