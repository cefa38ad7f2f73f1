#include "telephony/TapiService.h"

#include "platform/Clock.h"

CCriticalSection g_TapiLock;
constinit CVTapiLibrary g_TapiLibrary;

HLINEAPP g_hLineApp = 0;
DWORD g_dwNumLineDevs = 0;
HPHONEAPP g_hPhoneApp = 0;
DWORD g_dwNumPhoneDevs = 0;

LONG g_lTapiObjects = 0;

LONG BringUp(LONG (*initialize)(), LONG lReinit, const DWORD& hApp) {
    constexpr DWORD kPause = 1000;  // milliseconds
    constexpr DWORD kLimit = 10000; // milliseconds
    const DWORD dwStart = GetTickCount();
    for (;;) {
        const LONG status = initialize();
        if (status != lReinit || GetTickCount() - dwStart > kLimit)
            return status >= 0 && !hApp ? E_TAPI_FAILED : status;
        Sleep(kPause);
    }
}
