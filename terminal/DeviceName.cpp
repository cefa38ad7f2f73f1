#include "terminal/DeviceName.h"

#include "terminal/Decimal.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

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

// Relative ones too. Names of modems are of several words, and a slash may be between them.
bool IsPath(std::string_view name) {
    if (name.starts_with('/') || name.starts_with("./") || name.starts_with("../"))
        return true;
    return name.find('/') != std::string_view::npos && name.find(' ') == std::string_view::npos;
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

std::string GetPortPath(std::string_view deviceName) {
    std::error_code error;
    const std::string path = std::filesystem::absolute(deviceName, error).string();
    return IsPath(deviceName) && !error ? path : std::string(deviceName);
}

std::string GetPortDisplayName(std::string_view deviceName) {
    const std::size_t start = deviceName.find(kPortPrefix);
    if (IsPath(deviceName) || start == std::string_view::npos)
        return std::string(deviceName);

    std::string display(deviceName.substr(start));
    std::erase(display, ':');
    return display;
}
