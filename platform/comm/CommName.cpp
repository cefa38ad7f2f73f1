#include "platform/Comm.h"

#include <charconv>
#include <string_view>
#include <strings.h>

namespace platform {
namespace {

constexpr std::string_view DEVICE_PREFIX = "\\\\.\\";
constexpr std::string_view PORT_PREFIX = "COM";

// The kernel's own limit of 8250 ports is far below; this one keeps the number in its type.
constexpr std::size_t MOST_DIGITS = 5;

} // namespace

std::string DevicePathOfPort(LPCSTR portName) {
    if (!portName)
        return {};
    std::string_view name = portName;
    if (name.starts_with('/'))
        return std::string(name);

    if (name.starts_with(DEVICE_PREFIX))
        name.remove_prefix(DEVICE_PREFIX.size());
    if (name.size() <= PORT_PREFIX.size() ||
        strncasecmp(name.data(), PORT_PREFIX.data(), PORT_PREFIX.size()) != 0)
        return {};
    name.remove_prefix(PORT_PREFIX.size());
    if (name.ends_with(':'))
        name.remove_suffix(1);

    if (name.empty() || name.size() > MOST_DIGITS || name.front() == '0')
        return {};
    unsigned number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size())
        return {};
    return "/dev/ttyS" + std::to_string(number - 1);
}

} // namespace platform
