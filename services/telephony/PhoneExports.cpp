// The phone service: it can be initialised, and has no devices.
#include "services/telephony/Exports.h"
#include "services/telephony/HandleTable.h"

#include <mutex>

namespace {

// Without a device there is nothing to keep for an application, and nothing to tell it.
struct PhoneApplication {};

std::mutex g_phoneLock;
telephonyservice::CHandleTable<PhoneApplication> g_phoneApplications;

} // namespace

LONG phoneInitialize(HPHONEAPP* lphPhoneApp, HINSTANCE, PHONECALLBACK lpfnCallback, LPCSTR,
                     LPDWORD lpdwNumDevs) {
    if (lphPhoneApp == nullptr || lpfnCallback == nullptr || lpdwNumDevs == nullptr)
        return PHONEERR_INVALPOINTER;
    HPHONEAPP handle = 0;
    const LONG result = telephonyservice::Guard([&] {
        const std::lock_guard lock(g_phoneLock);
        handle = g_phoneApplications.Add(std::make_shared<PhoneApplication>());
        return 0;
    });
    if (result != 0 || handle == 0)
        return PHONEERR_RESOURCEUNAVAIL;
    *lphPhoneApp = handle;
    *lpdwNumDevs = 0;
    return 0;
}

LONG phoneShutdown(HPHONEAPP hPhoneApp) {
    const std::lock_guard lock(g_phoneLock);
    return g_phoneApplications.Remove(hPhoneApp) ? 0 : PHONEERR_INVALAPPHANDLE;
}
