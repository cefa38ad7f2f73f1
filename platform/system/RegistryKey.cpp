#include "platform/system/RegistryKey.h"

#include "platform/comm/SerialDevices.h"

#include <strings.h>

#include <algorithm>
#include <charconv>

namespace platform {
namespace {

constexpr std::string_view SERIAL_MAP = "HARDWARE\\DEVICEMAP\\SERIALCOMM";
constexpr std::string_view MODEM_CLASS =
    "System\\CurrentControlSet\\Control\\Class\\{4D36E96D-E325-11CE-BFC1-08002BE10318}";
constexpr std::size_t INSTANCE_DIGITS = 4;

bool IsSame(std::string_view left, std::string_view right) {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

// Whether a path leads to the key or through it; the root's is empty.
bool IsOnTheWay(std::string_view path, std::string_view key) {
    if (path.empty() || IsSame(path, key))
        return true;
    return path.size() < key.size() && key[path.size()] == '\\' &&
           IsSame(path, key.substr(0, path.size()));
}

RegistryValues ReadSerialMap() {
    RegistryValues values;
    for (const SerialDevice& device : ListSerialDevices())
        values.emplace_back("\\Device\\" + device.name, device.GetPortName());
    return values;
}

std::optional<RegistryValues> ReadModem(std::string_view instance) {
    std::size_t number = 0;
    const auto [end, error] =
        std::from_chars(instance.data(), instance.data() + instance.size(), number);
    if (instance.size() < INSTANCE_DIGITS || error != std::errc() ||
        end != instance.data() + instance.size())
        return std::nullopt;
    std::vector<SerialDevice> devices = ListSerialDevices();
    std::erase_if(devices, [](const SerialDevice& device) { return device.isOnBoard; });
    if (number >= devices.size())
        return std::nullopt;
    return RegistryValues{{"AttachedTo", devices[number].GetPortName()}};
}

} // namespace

std::optional<RegistryValues> ReadRegistryKey(std::string_view path) {
    if (IsSame(path, SERIAL_MAP))
        return ReadSerialMap();
    if (IsOnTheWay(path, SERIAL_MAP) || IsOnTheWay(path, MODEM_CLASS))
        return RegistryValues{};
    if (path.size() > MODEM_CLASS.size() + 1 &&
        IsSame(path.substr(0, MODEM_CLASS.size()), MODEM_CLASS) && path[MODEM_CLASS.size()] == '\\')
        return ReadModem(path.substr(MODEM_CLASS.size() + 1));
    return std::nullopt;
}

} // namespace platform
