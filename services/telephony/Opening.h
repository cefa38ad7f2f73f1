// Opening a device for a call. Blocks; for a thread of its own.
#pragma once

#include "common/UniqueHandle.h"
#include "services/telephony/Cancellation.h"
#include "services/telephony/LineDevice.h"
#include "services/telephony/ModemManager.h"

#include <string>

namespace telephonyservice {

// What opening a device gives. The port is closed before the modem manager gets the modem back.
struct DeviceUse {
    CModemHold hold;
    CUniqueHandle port;

    void GiveBack() {
        port.Reset();
        hold.Release();
    }
};

// Opens the device as a port that nobody else has, and tells the modem manager to leave it alone
// for as long. 0 with the use stored; else
//   LINEERR_ALLOCATED        another program has it open
//   LINEERR_NOTOWNER         no permission
//   LINEERR_NODEVICE         there is no such device, or no longer
//   LINEERR_NODRIVER         it is no serial device
//   LINEERR_INUSE            the modem manager does not let go of it
//   LINEERR_OPERATIONFAILED  cancelled, or anything else
LONG OpenDevice(const LineDevice& device, const CCancellation& cancellation, DeviceUse& use);

} // namespace telephonyservice
