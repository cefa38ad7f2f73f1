#include "platform/system/ModemKey.h"

#include "platform/Error.h"
#include "platform/comm/SerialDevices.h"

#include <strings.h>

#include <charconv>

namespace platform {
namespace {

constexpr std::string_view kModemClass =
    "System\\CurrentControlSet\\Control\\Class\\{4D36E96D-E325-11CE-BFC1-08002BE10318}\\";
constexpr std::size_t kInstanceDigits = 4;

// What is no instance's number is one that no machine has.
std::size_t InstanceOf(std::string_view path) {
    constexpr std::size_t kNone = -1;
    if (path.size() < kModemClass.size() + kInstanceDigits ||
        strncasecmp(path.data(), kModemClass.data(), kModemClass.size()) != 0)
        return kNone;
    std::size_t number = 0;
    const char* const last = path.data() + path.size();
    const auto [end, error] = std::from_chars(path.data() + kModemClass.size(), last, number);
    return error == std::errc() && end == last ? number : kNone;
}

} // namespace

std::shared_ptr<CModemKey> OpenModemKey(std::string_view path) {
    const std::size_t instance = InstanceOf(path);
    std::vector<SerialDevice> devices = ListSerialDevices();
    std::erase_if(devices, [](const SerialDevice& device) { return device.isOnBoard; });
    if (instance < devices.size())
        return std::make_shared<CModemKey>(devices[instance].GetPortName());
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

} // namespace platform
