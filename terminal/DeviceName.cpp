#include "terminal/DeviceName.h"

#include "terminal/Decimal.h"

#include <algorithm>

namespace {

constexpr std::string_view kPortPrefix = "COM";
constexpr std::string_view kNamespacePrefix = "\\\\.\\COM";

// The highest port that has a name without the device-namespace prefix.
constexpr int kLastShortPort = 9;

bool BeginsWithCom(std::string_view name) {
    const auto sameLetter = [](char prefix, char letter) {
        return prefix == letter || prefix + ('a' - 'A') == letter;
    };
    return name.size() >= kPortPrefix.size() &&
           std::equal(kPortPrefix.begin(), kPortPrefix.end(), name.begin(), sameLetter);
}

bool IsPath(std::string_view name) {
    return name.starts_with('/');
}

} // namespace

std::string MakeDeviceName(std::string_view name) {
    if (!BeginsWithCom(name))
        return std::string(name);

    const int port = ParseDecimal(name.substr(kPortPrefix.size()));
    if (port <= kLastShortPort)
        return "COM" + std::to_string(port) + ":";
    return std::string(kNamespacePrefix) + std::to_string(port);
}

BOOL IsComPort(std::string_view deviceName) {
    if (IsPath(deviceName))
        return TRUE;
    if (deviceName.size() == 5 && BeginsWithCom(deviceName))
        return TRUE;
    return deviceName.find(kNamespacePrefix) != std::string_view::npos ? TRUE : FALSE;
}

std::string GetPortDisplayName(std::string_view deviceName) {
    const std::size_t start = deviceName.find(kPortPrefix);
    if (IsPath(deviceName) || start == std::string_view::npos)
        return std::string(deviceName);

    std::string display(deviceName.substr(start));
    std::erase(display, ':');
    return display;
}
