#include "terminal/PortNames.h"

#include "platform/Version.h"
#include "platform/comm/SerialDevices.h"

#include <algorithm>

namespace {

// What systems of the other family offer, whether it is there or not.
constexpr const char* kFixedPorts[] = {"COM1", "COM2", "COM3", "COM4"};

bool IsBefore(std::string_view left, std::string_view right) {
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

bool HasFixedPorts() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return !GetVersionExA(&version) || version.dwPlatformId != VER_PLATFORM_WIN32_NT;
}

} // namespace

void AddPortName(PortNames& names, std::string_view name) {
    const auto place = std::lower_bound(names.begin(), names.end(), name, IsBefore);
    if (place == names.end() || *place != name)
        names.emplace(place, name);
}

void EnumerateComPorts(PortNames& names) {
    names.clear();
    if (HasFixedPorts())
        for (const char* port : kFixedPorts)
            AddPortName(names, port);
    for (const platform::SerialDevice& device : platform::ListSerialDevices())
        AddPortName(names, device.GetPortName());
}
