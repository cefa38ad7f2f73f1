#include "platform/Comm.h"

#include <charconv>
#include <string_view>
#include <strings.h>

namespace platform {
namespace {

constexpr std::string_view kDevicePrefix = "\\\\.\\";
constexpr std::string_view kPortPrefix = "COM";

// The kernel's own limit of 8250 ports is far below; this one keeps the number in its type.
constexpr std::size_t kMostDigits = 5;

} // namespace

std::string DevicePathOfPort(LPCSTR portName) {
    if (!portName)
        return {};
    std::string_view name = portName;
    if (name.starts_with('/'))
        return std::string(name);

    if (name.starts_with(kDevicePrefix))
        name.remove_prefix(kDevicePrefix.size());
    if (name.size() <= kPortPrefix.size() ||
        strncasecmp(name.data(), kPortPrefix.data(), kPortPrefix.size()) != 0)
        return {};
    name.remove_prefix(kPortPrefix.size());
    if (name.ends_with(':'))
        name.remove_suffix(1);

    if (name.empty() || name.size() > kMostDigits || name.front() == '0')
        return {};
    unsigned number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size())
        return {};
    return "/dev/ttyS" + std::to_string(number - 1);
}

} // namespace platform
