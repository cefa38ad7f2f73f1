// ITapi: the telephony service's line and phone devices, for one client.
//
// An object has at most one line with one call on it, and one phone. A holder ends its use with
// Release. Operations of an object exclude each other; each keeps the object for its whole
// duration, waiting included.
//
// Messages of the service arrive on the thread that first needed the line or the phone service, and
// only while that thread dispatches its messages, as every wait for a reply here does. An object
// belongs on that thread: a wait elsewhere sees no reply. A client's callback runs there as well
// and may call back into the object, but not release it.
//
// Each operation returns 0 or more for success, and a negative status for failure: one of
// TapiStatus.h or the service's own. E_TAPI_NOLIBRARY and E_TAPI_FAILED can come from every
// operation that asks the service. An operation with bWait that is asked not to wait returns the
// request's identifier; one that waits returns the reply's result, E_TAPI_TIMEOUT or, when another
// wait of the same kind began meanwhile, E_TAPI_REENTERED, as that other wait does.
//
// A record that is handed out belongs to the caller, who frees it with CoTaskMemFree; its
// dwTotalSize is its block's size, nothing else in it is certain (see TapiRecord.h). On failure
// null is stored.
#pragma once

#include "platform/Registry.h"
#include "telephony/TapiRecords.h"
#include "telephony/TapiStatus.h"

inline constexpr IID IID_ITapi = {
    0x3D9A72E4, 0x81C6, 0x4F0B, {0xB2, 0x5D, 0x0E, 0x97, 0x64, 0xA8, 0x1F, 0xC3}};

class ITapi : public IUnknown {
  public:
    // Stores the name of the next line device that is a data modem, cut to dwSize - 1 characters;
    // from the first one with bRestart. E_TAPI_NODEVICE when there is no further one.
    virtual LONG IterateModems(char* szName, DWORD dwSize, BOOL bRestart) = 0;

    // Opens the registry key of a modem; the caller closes it. E_TAPI_FAILED.
    virtual LONG GetModemRegKey(DWORD dwInstance, HKEY* phKey) = 0;

    // Operations on the call, E_TAPI_NOCALL without one; the waits take up to 2 seconds.
    virtual LONG LineAnswer(BOOL bWait) = 0;
    virtual LONG LineBlindTransfer(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) = 0;

    // Closes the line, which ends its call. 0 also when none is open.
    virtual LONG LineClose() = 0;

    // The device's settings: a dialog, and one that begins with given settings (null: the present
    // ones) and hands the new ones out.
    virtual LONG LineConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) = 0;
    virtual LONG LineConfigDialogEdit(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass,
                                      LPCVOID pConfigIn, DWORD dwSize, VARSTRING** ppConfigOut) = 0;

    // The identifier of the line device of exactly that name. E_TAPI_NODEVICE, nothing stored.
    virtual LONG LineDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) = 0;

    // Operations on the call, as above.
    virtual LONG LineDial(LPCSTR szDestination, DWORD dwCountryCode, BOOL bWait) = 0;
    virtual LONG LineDrop(BOOL bWait) = 0;
    virtual LONG LineGatherDigits(DWORD dwDigitModes, char* pDigits, DWORD dwNumDigits,
                                  LPCSTR szTerminationDigits, DWORD dwFirstDigitTimeout,
                                  DWORD dwInterDigitTimeout) = 0;
    virtual LONG LineGenerateDigits(DWORD dwDigitMode, LPCSTR szDigits, DWORD dwDuration) = 0;
    virtual LONG LineGetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                    LPDWORD pdwPriority) = 0;
    virtual LONG LineGetCallInfo(LINECALLINFO** ppCallInfo) = 0;
    virtual LONG LineGetCallStatus(LINECALLSTATUS** ppCallStatus) = 0;

    // What the service tells of a country, a device, its settings, its picture.
    virtual LONG LineGetCountry(DWORD dwCountryID, LINECOUNTRYLIST** ppCountryList) = 0;
    virtual LONG LineGetDevCaps(DWORD dwDeviceID, LINEDEVCAPS** ppCapabilities) = 0;
    virtual LONG LineGetDevConfig(DWORD dwDeviceID, VARSTRING** ppConfig, LPCSTR szDeviceClass) = 0;
    virtual LONG LineGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) = 0;

    // What identifies the call, or without one the line, in a device class: for "comm/datamodem"
    // the handle of the port in 32 bits, then the device's name. E_TAPI_NOLINE.
    virtual LONG LineGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) = 0;
    virtual LONG LineGetLineDevStatus(LINEDEVSTATUS** ppLineDevStatus) = 0;
    virtual LONG LineGetRequest(DWORD dwRequestMode, LPVOID pRequestBuffer) = 0;
    virtual LONG LineGetTranslateCaps(LINETRANSLATECAPS** ppTranslateCaps) = 0;
    virtual LONG LineHandoff(LPCSTR szFileName, DWORD dwMediaMode) = 0;
    virtual LONG LineHold(BOOL bWait) = 0;

    // Places a call on the line; waits for up to a minute. Destination and parameters may be null.
    // E_TAPI_CALLINPROGRESS when there is one.
    virtual LONG LineMakeCall(LPCSTR szDestination, DWORD dwCountryCode,
                              const LINECALLPARAMS* pCallParams, BOOL bWait) = 0;
    virtual LONG LineMonitorDigits(DWORD dwDigitModes) = 0;
    virtual LONG LineMonitorMedia(DWORD dwMediaModes) = 0;

    // Opens a line device; with the monitor privilege a call that is on it becomes the current one.
    // E_TAPI_LINEOPEN when one is open.
    virtual LONG LineOpen(DWORD dwDeviceID, DWORD dwPrivileges, DWORD dwMediaModes) = 0;
    virtual LONG LineRegisterRequestRecipient(DWORD dwRegistrationInstance, DWORD dwRequestMode,
                                              BOOL bEnable) = 0;
    virtual LONG LineSetAppPriority(LPCSTR szAppFilename, DWORD dwMediaMode, DWORD dwRequestMode,
                                    DWORD dwPriority) = 0;
    virtual LONG LineSetAppSpecific(DWORD dwAppSpecific) = 0;
    virtual LONG LineSetCallParams(DWORD dwBearerMode, DWORD dwMinRate, DWORD dwMaxRate,
                                   const LINEDIALPARAMS* pDialParams, BOOL bWait) = 0;
    virtual LONG LineSetCallPrivilege(DWORD dwCallPrivilege) = 0;
    virtual LONG LineSetCurrentLocation(DWORD dwLocation) = 0;
    virtual LONG LineSetDevConfig(DWORD dwDeviceID, LPCVOID pConfig, DWORD dwSize,
                                  LPCSTR szDeviceClass) = 0;
    virtual LONG LineSetMediaMode(DWORD dwMediaModes) = 0;
    virtual LONG LineSetTollList(LPCSTR szAddress, DWORD dwTollListOption) = 0;

    // Who is called after every message of the line (null: nobody), with dwInstance. Returns 0.
    virtual LONG LineSetUserCallback(LINECALLBACK pfnCallback, DWORD_PTR dwInstance) = 0;
    virtual LONG LineTranslateAddress(LPCSTR szAddress, DWORD dwCard, DWORD dwTranslateOptions,
                                      LINETRANSLATEOUTPUT** ppTranslateOutput) = 0;
    virtual LONG LineTranslateDialog(HWND hwndOwner, LPCSTR szAddress) = 0;
    virtual LONG LineUnhold(BOOL bWait) = 0;

    // Phones, as lines. E_TAPI_PHONEOPEN, E_TAPI_NOPHONE; the waits take up to 2 seconds.
    virtual LONG PhoneClose() = 0;
    virtual LONG PhoneConfigDialog(DWORD dwDeviceID, HWND hwndOwner, LPCSTR szDeviceClass) = 0;
    virtual LONG PhoneDeviceNameToID(LPCSTR szName, LPDWORD pdwDeviceID) = 0;
    virtual LONG PhoneGetDevCaps(DWORD dwDeviceID, PHONECAPS** ppCapabilities) = 0;
    virtual LONG PhoneGetGain(DWORD dwHookSwitchDev, LPDWORD pdwGain) = 0;
    virtual LONG PhoneGetHookSwitch(LPDWORD pdwHookSwitchDevs) = 0;
    virtual LONG PhoneGetIcon(DWORD dwDeviceID, LPCSTR szDeviceClass, HICON* phIcon) = 0;
    virtual LONG PhoneGetID(VARSTRING** ppDeviceID, LPCSTR szDeviceClass) = 0;
    virtual LONG PhoneGetRing(LPDWORD pdwRingMode, LPDWORD pdwVolume) = 0;
    virtual LONG PhoneGetStatus(PHONESTATUS** ppPhoneStatus) = 0;
    virtual LONG PhoneGetVolume(DWORD dwHookSwitchDev, LPDWORD pdwVolume) = 0;
    virtual LONG PhoneOpen(DWORD dwDeviceID, DWORD dwPrivilege) = 0;
    virtual LONG PhoneSetGain(DWORD dwHookSwitchDev, DWORD dwGain, BOOL bWait) = 0;
    virtual LONG PhoneSetHookSwitch(DWORD dwHookSwitchDevs, DWORD dwHookSwitchMode, BOOL bWait) = 0;
    virtual LONG PhoneSetUserCallback(PHONECALLBACK pfnCallback, DWORD_PTR dwInstance) = 0;
    virtual LONG PhoneSetVolume(DWORD dwHookSwitchDev, DWORD dwVolume, BOOL bWait) = 0;

  protected:
    ~ITapi() = default;
};

// Makes a telephony object. lppTapi receives the interface with one reference; pUnkOuter is the
// outer object or null. S_OK, E_INVALIDARG (null lppTapi) or E_OUTOFMEMORY.
HRESULT CreateTapi(ITapi** lppTapi, IUnknown* pUnkOuter);
