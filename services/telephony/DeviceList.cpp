#include "services/telephony/DeviceList.h"

#include "services/telephony/DeviceDatabase.h"
#include "services/telephony/InterfaceNames.h"
#include "services/telephony/NamedModems.h"
#include "services/telephony/UniqueNames.h"

namespace telephonyservice {

std::vector<LineDevice> ListLineDevices() {
    std::vector<LineDevice> devices = ReadNamedModems();
    for (LineDevice& device : NameInterfaces(ListSerialInterfaces()))
        devices.push_back(std::move(device));
    MakeNamesUnique(devices);
    return devices;
}

} // namespace telephonyservice
