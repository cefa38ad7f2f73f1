// What all telephony objects of the process share: the library, and the line and the phone service
// while they are up.
//
// The first object that needs a service brings it up, the last object that goes takes it down.
// g_TapiLock is held meanwhile; a holder of an object's lock may take it, never the other way
// round.
#pragma once

#include "common/CriticalSection.h"
#include "telephony/TapiLibrary.h"

extern CCriticalSection g_TapiLock;
extern CVTapiLibrary g_TapiLibrary;

// 0 while a service is not up. The counts of devices are those of when it was brought up.
extern HLINEAPP g_hLineApp;
extern DWORD g_dwNumLineDevs;
extern HPHONEAPP g_hPhoneApp;
extern DWORD g_dwNumPhoneDevs;

// The telephony objects that are alive; changes with g_TapiLock held.
extern LONG g_lTapiObjects;

// No service has more devices: a count beyond it is a lie that would be believed for hours.
inline constexpr DWORD kMostTapiDevices = 4096;

// Calls initialize() again each second for ten seconds, as long as it returns lReinit: the service
// is then between two lives. Returns its last result; E_TAPI_FAILED when that is a success but
// hApp, where the handle goes, is 0: such a service could not be shut down. Blocks meanwhile.
LONG BringUp(LONG (*initialize)(), LONG lReinit, const DWORD& hApp);
