// First the hold, then the port: the manager closes the device some time after it has let go of it,
// so a device that is still in use then is tried again for a while.
#include "services/telephony/Opening.h"

#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "services/telephony/Notice.h"
#include "telephony/TapiTypes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace telephonyservice {
namespace {

// The modem manager closes its ports shortly after it has answered.
constexpr int kTriesAfterHold = 30;
constexpr int kMillisecondsBetweenTries = 100;

// Refused access is one of three things.
LONG ExplainRefusal(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return LINEERR_NOTOWNER;
    if (S_ISDIR(status.st_mode))
        return LINEERR_NODRIVER;
    const bool isPermitted = faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) == 0;
    return isPermitted ? LINEERR_ALLOCATED : LINEERR_NOTOWNER;
}

LONG ResultOf(DWORD error, const std::string& path) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DEVICE_NOT_CONNECTED:
        return LINEERR_NODEVICE;
    case ERROR_ACCESS_DENIED:
        return ExplainRefusal(path);
    case ERROR_SHARING_VIOLATION:
        return LINEERR_ALLOCATED;
    case ERROR_NOT_SUPPORTED:
        return LINEERR_NODRIVER;
    default:
        return LINEERR_OPERATIONFAILED;
    }
}

LONG OpenPort(const std::string& path, CUniqueHandle& port) {
    const HANDLE handle = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return ResultOf(GetLastError(), path);
    port.Reset(handle);
    return 0;
}

} // namespace

LONG OpenDevice(const LineDevice& device, const CCancellation& cancellation, DeviceUse& use) {
    const EHold hold = use.hold.Take(device, cancellation);
    if (hold == EHold::Refused)
        return LINEERR_INUSE;
    int tries = hold == EHold::Held || hold == EHold::Left ? kTriesAfterHold : 1;
    LONG result = LINEERR_OPERATIONFAILED;
    while (!cancellation.IsCancelled()) {
        result = OpenPort(device.devicePath, use.port);
        if (result != LINEERR_ALLOCATED || --tries == 0)
            break;
        cancellation.Wait(kMillisecondsBetweenTries);
    }
    if (result == LINEERR_ALLOCATED && use.hold.MayBeProbing() &&
        !platform::IsDeviceUserSeen(device.devicePath))
        TellNews(device.name + ": ModemManager may be probing it; if it was just plugged in, try "
                               "again in half a minute");
    if (result != 0)
        use.hold.Release();
    return result;
}

} // namespace telephonyservice
