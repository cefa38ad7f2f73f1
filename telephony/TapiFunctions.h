// The functions of the telephony service, each once: result, name, parameters.
//
// WIRELET_TAPI_FUNCTIONS(entry) names the 62 functions in the order in which the binding declares
// them, as published for version 1.4 with 8-bit texts. The binding, the service and the tests are
// made from this list.
#pragma once

#include "platform/Module.h"
#include "telephony/TapiRecords.h"

// clang-format off
#define WIRELET_TAPI_FUNCTIONS(entry) \
    entry(LONG, lineAnswer, (HCALL hCall, LPCSTR lpsUserUserInfo, DWORD dwSize)) \
    entry(LONG, lineBlindTransfer, (HCALL hCall, LPCSTR lpszDestAddress, DWORD dwCountryCode)) \
    entry(LONG, lineClose, (HLINE hLine)) \
    entry(LONG, lineConfigDialog, (DWORD dwDeviceID, HWND hwndOwner, LPCSTR lpszDeviceClass)) \
    entry(LONG, lineConfigDialogEdit, (DWORD dwDeviceID, HWND hwndOwner, LPCSTR lpszDeviceClass, LPCVOID lpDeviceConfigIn, DWORD dwSize, VARSTRING* lpDeviceConfigOut)) \
    entry(LONG, lineDeallocateCall, (HCALL hCall)) \
    entry(LONG, lineDial, (HCALL hCall, LPCSTR lpszDestAddress, DWORD dwCountryCode)) \
    entry(LONG, lineDrop, (HCALL hCall, LPCSTR lpsUserUserInfo, DWORD dwSize)) \
    entry(LONG, lineGatherDigits, (HCALL hCall, DWORD dwDigitModes, char* lpsDigits, DWORD dwNumDigits, LPCSTR lpszTerminationDigits, DWORD dwFirstDigitTimeout, DWORD dwInterDigitTimeout)) \
    entry(LONG, lineGenerateDigits, (HCALL hCall, DWORD dwDigitMode, LPCSTR lpszDigits, DWORD dwDuration)) \
    entry(LONG, lineGetAppPriority, (LPCSTR lpszAppFilename, DWORD dwMediaMode, LINEEXTENSIONID* lpExtensionID, DWORD dwRequestMode, VARSTRING* lpExtensionName, LPDWORD lpdwPriority)) \
    entry(LONG, lineGetCallInfo, (HCALL hCall, LINECALLINFO* lpCallInfo)) \
    entry(LONG, lineGetCallStatus, (HCALL hCall, LINECALLSTATUS* lpCallStatus)) \
    entry(LONG, lineGetDevCaps, (HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion, DWORD dwExtVersion, LINEDEVCAPS* lpLineDevCaps)) \
    entry(LONG, lineGetDevConfig, (DWORD dwDeviceID, VARSTRING* lpDeviceConfig, LPCSTR lpszDeviceClass)) \
    entry(LONG, lineGetIcon, (DWORD dwDeviceID, LPCSTR lpszDeviceClass, HICON* lphIcon)) \
    entry(LONG, lineGetID, (HLINE hLine, DWORD dwAddressID, HCALL hCall, DWORD dwSelect, VARSTRING* lpDeviceID, LPCSTR lpszDeviceClass)) \
    entry(LONG, lineGetLineDevStatus, (HLINE hLine, LINEDEVSTATUS* lpLineDevStatus)) \
    entry(LONG, lineGetNewCalls, (HLINE hLine, DWORD dwAddressID, DWORD dwSelect, LINECALLLIST* lpCallList)) \
    entry(LONG, lineGetRequest, (HLINEAPP hLineApp, DWORD dwRequestMode, LPVOID lpRequestBuffer)) \
    entry(LONG, lineGetTranslateCaps, (HLINEAPP hLineApp, DWORD dwAPIVersion, LINETRANSLATECAPS* lpTranslateCaps)) \
    entry(LONG, lineHandoff, (HCALL hCall, LPCSTR lpszFileName, DWORD dwMediaMode)) \
    entry(LONG, lineHold, (HCALL hCall)) \
    entry(LONG, lineInitialize, (HLINEAPP* lphLineApp, HINSTANCE hInstance, LINECALLBACK lpfnCallback, LPCSTR lpszAppName, LPDWORD lpdwNumDevs)) \
    entry(LONG, lineMakeCall, (HLINE hLine, HCALL* lphCall, LPCSTR lpszDestAddress, DWORD dwCountryCode, const LINECALLPARAMS* lpCallParams)) \
    entry(LONG, lineMonitorDigits, (HCALL hCall, DWORD dwDigitModes)) \
    entry(LONG, lineMonitorMedia, (HCALL hCall, DWORD dwMediaModes)) \
    entry(LONG, lineNegotiateAPIVersion, (HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPILowVersion, DWORD dwAPIHighVersion, LPDWORD lpdwAPIVersion, LINEEXTENSIONID* lpExtensionID)) \
    entry(LONG, lineOpen, (HLINEAPP hLineApp, DWORD dwDeviceID, HLINE* lphLine, DWORD dwAPIVersion, DWORD dwExtVersion, DWORD_PTR dwCallbackInstance, DWORD dwPrivileges, DWORD dwMediaModes, const LINECALLPARAMS* lpCallParams)) \
    entry(LONG, lineRegisterRequestRecipient, (HLINEAPP hLineApp, DWORD dwRegistrationInstance, DWORD dwRequestMode, DWORD bEnable)) \
    entry(LONG, lineSetAppPriority, (LPCSTR lpszAppFilename, DWORD dwMediaMode, LINEEXTENSIONID* lpExtensionID, DWORD dwRequestMode, LPCSTR lpszExtensionName, DWORD dwPriority)) \
    entry(LONG, lineSetAppSpecific, (HCALL hCall, DWORD dwAppSpecific)) \
    entry(LONG, lineSetCallParams, (HCALL hCall, DWORD dwBearerMode, DWORD dwMinRate, DWORD dwMaxRate, const LINEDIALPARAMS* lpDialParams)) \
    entry(LONG, lineSetCallPrivilege, (HCALL hCall, DWORD dwCallPrivilege)) \
    entry(LONG, lineSetCurrentLocation, (HLINEAPP hLineApp, DWORD dwLocation)) \
    entry(LONG, lineSetDevConfig, (DWORD dwDeviceID, LPCVOID lpDeviceConfig, DWORD dwSize, LPCSTR lpszDeviceClass)) \
    entry(LONG, lineSetMediaMode, (HCALL hCall, DWORD dwMediaModes)) \
    entry(LONG, lineSetStatusMessages, (HLINE hLine, DWORD dwLineStates, DWORD dwAddressStates)) \
    entry(LONG, lineSetTollList, (HLINEAPP hLineApp, DWORD dwDeviceID, LPCSTR lpszAddressIn, DWORD dwTollListOption)) \
    entry(LONG, lineShutdown, (HLINEAPP hLineApp)) \
    entry(LONG, lineTranslateAddress, (HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion, LPCSTR lpszAddressIn, DWORD dwCard, DWORD dwTranslateOptions, LINETRANSLATEOUTPUT* lpTranslateOutput)) \
    entry(LONG, lineTranslateDialog, (HLINEAPP hLineApp, DWORD dwDeviceID, DWORD dwAPIVersion, HWND hwndOwner, LPCSTR lpszAddressIn)) \
    entry(LONG, lineUnhold, (HCALL hCall)) \
    entry(LONG, lineGetCountry, (DWORD dwCountryID, DWORD dwAPIVersion, LINECOUNTRYLIST* lpLineCountryList)) \
    entry(LONG, phoneClose, (HPHONE hPhone)) \
    entry(LONG, phoneConfigDialog, (DWORD dwDeviceID, HWND hwndOwner, LPCSTR lpszDeviceClass)) \
    entry(LONG, phoneGetDevCaps, (HPHONEAPP hPhoneApp, DWORD dwDeviceID, DWORD dwAPIVersion, DWORD dwExtVersion, PHONECAPS* lpPhoneCaps)) \
    entry(LONG, phoneGetGain, (HPHONE hPhone, DWORD dwHookSwitchDev, LPDWORD lpdwGain)) \
    entry(LONG, phoneGetHookSwitch, (HPHONE hPhone, LPDWORD lpdwHookSwitchDevs)) \
    entry(LONG, phoneGetIcon, (DWORD dwDeviceID, LPCSTR lpszDeviceClass, HICON* lphIcon)) \
    entry(LONG, phoneGetID, (HPHONE hPhone, VARSTRING* lpDeviceID, LPCSTR lpszDeviceClass)) \
    entry(LONG, phoneGetRing, (HPHONE hPhone, LPDWORD lpdwRingMode, LPDWORD lpdwVolume)) \
    entry(LONG, phoneGetStatus, (HPHONE hPhone, PHONESTATUS* lpPhoneStatus)) \
    entry(LONG, phoneGetVolume, (HPHONE hPhone, DWORD dwHookSwitchDev, LPDWORD lpdwVolume)) \
    entry(LONG, phoneInitialize, (HPHONEAPP* lphPhoneApp, HINSTANCE hInstance, PHONECALLBACK lpfnCallback, LPCSTR lpszAppName, LPDWORD lpdwNumDevs)) \
    entry(LONG, phoneNegotiateAPIVersion, (HPHONEAPP hPhoneApp, DWORD dwDeviceID, DWORD dwAPILowVersion, DWORD dwAPIHighVersion, LPDWORD lpdwAPIVersion, PHONEEXTENSIONID* lpExtensionID)) \
    entry(LONG, phoneOpen, (HPHONEAPP hPhoneApp, DWORD dwDeviceID, HPHONE* lphPhone, DWORD dwAPIVersion, DWORD dwExtVersion, DWORD_PTR dwCallbackInstance, DWORD dwPrivilege)) \
    entry(LONG, phoneSetGain, (HPHONE hPhone, DWORD dwHookSwitchDev, DWORD dwGain)) \
    entry(LONG, phoneSetHookSwitch, (HPHONE hPhone, DWORD dwHookSwitchDevs, DWORD dwHookSwitchMode)) \
    entry(LONG, phoneSetStatusMessages, (HPHONE hPhone, DWORD dwPhoneStates, DWORD dwButtonModes, DWORD dwButtonStates)) \
    entry(LONG, phoneSetVolume, (HPHONE hPhone, DWORD dwHookSwitchDev, DWORD dwVolume)) \
    entry(LONG, phoneShutdown, (HPHONEAPP hPhoneApp))
// clang-format on
