#include "platform/Comm.h"

#include "platform/Error.h"
#include "platform/comm/CommUsers.h"
#include "platform/terminal/PrintableText.h"
#include "platform/terminal/TerminalDevice.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

namespace platform {
namespace {

constexpr std::string_view kDeviceFolder = "/dev/";
// The adapters that come and go. The built-in ports are never listed: most have no hardware.
constexpr std::string_view kAdapterPrefixes[] = {"ttyUSB", "ttyACM"};
constexpr std::string_view kBuiltInPrefix = "ttyS";
constexpr std::string_view kTtyPrefix = "tty";
constexpr std::size_t kMostNames = 8;

constexpr mode_t kGroupAccess = S_IRGRP | S_IWGRP;
constexpr mode_t kPermissions = 0777;

std::string NameOfGroup(gid_t group) {
    const struct group* entry = getgrgid(group);
    return entry ? PrintableText(entry->gr_name) : std::to_string(group);
}

std::string NameOfUser(uid_t user) {
    const passwd* entry = getpwuid(user);
    return entry ? PrintableText(entry->pw_name) : std::to_string(user);
}

bool IsNumbered(std::string_view name, std::string_view prefix) {
    return name.size() > prefix.size() && name.starts_with(prefix) &&
           std::all_of(name.begin() + static_cast<std::ptrdiff_t>(prefix.size()), name.end(),
                       [](unsigned char byte) { return std::isdigit(byte) != 0; });
}

// What the asked name is without its number, when others of its kind are worth naming.
std::string_view KindOf(std::string_view path) {
    if (!path.starts_with(kDeviceFolder))
        return {};
    std::string_view kind = path.substr(kDeviceFolder.size());
    while (!kind.empty() && std::isdigit(static_cast<unsigned char>(kind.back())))
        kind.remove_suffix(1);
    const bool isListed =
        kind.starts_with(kTtyPrefix) && kind.size() > kTtyPrefix.size() && kind != kBuiltInPrefix;
    return isListed ? kind : std::string_view{};
}

std::vector<std::string> FindAdapters(std::string_view kind) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(kDeviceFolder.data()), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        const bool isAdapter =
            std::any_of(std::begin(kAdapterPrefixes), std::end(kAdapterPrefixes),
                        [&](std::string_view prefix) { return IsNumbered(name, prefix); });
        if (isAdapter || (!kind.empty() && IsNumbered(name, kind)))
            names.emplace_back(name);
    }
    // By number within a kind: the shorter of two names has the lower one.
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return names;
}

std::string ExplainMissing(const std::string& path) {
    std::string text = "no such device";
    const std::vector<std::string> names = FindAdapters(KindOf(path));
    for (std::size_t index = 0; index < std::min(names.size(), kMostNames); ++index) {
        text += index == 0 ? "; there are " : ", ";
        text.append(kDeviceFolder).append(PrintableText(names[index]));
    }
    if (names.size() > kMostNames)
        text += " and others";
    return text;
}

std::string ExplainPermission(const struct stat& device) {
    const bool isOpenToGroup = (device.st_mode & kGroupAccess) == kGroupAccess;
    if (isOpenToGroup && device.st_gid != 0) {
        const std::string group = NameOfGroup(device.st_gid);
        return "permission denied; it belongs to the group " + group +
               ": add yourself with 'sudo adduser " + NameOfUser(getuid()) + " " + group +
               "' and log in again";
    }
    std::array<char, 8> mode{};
    std::snprintf(mode.data(), mode.size(), "%04o", device.st_mode & kPermissions);
    return "permission denied; it belongs to the user " + NameOfUser(device.st_uid) +
           ", and its permissions (" + mode.data() + ") do not let you use it";
}

std::string ExplainRefusal(const std::string& path) {
    struct stat device {};
    if (stat(path.c_str(), &device) != 0)
        return errno == EACCES ? "permission denied on the way to it" : ExplainMissing(path);
    if (S_ISDIR(device.st_mode))
        return "is a directory, not a serial device";
    if (IsOwnTerminal(device))
        return "is the terminal you are sitting at; choose another device";
    if (faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK, AT_EACCESS) != 0)
        return ExplainPermission(device);
    const CommUser user = FindCommUser(device);
    if (user.process == 0)
        return "in use by another process; end it, or choose another device";
    const std::string name = user.name.empty() ? "" : " (" + PrintableText(user.name) + ")";
    return "in use by process " + std::to_string(user.process) + name +
           "; end it, or choose another device";
}

std::string Explain(const std::string& path, DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return ExplainMissing(path);
    case ERROR_ACCESS_DENIED:
        return ExplainRefusal(path);
    case ERROR_NOT_SUPPORTED:
        return "is no serial device";
    case ERROR_DEVICE_NOT_CONNECTED:
        return "was unplugged or has no hardware behind it";
    case ERROR_TOO_MANY_OPEN_FILES:
        return "too many files are open";
    case ERROR_NOT_ENOUGH_MEMORY:
        return "not enough memory";
    default:
        return "the driver refuses (error " + std::to_string(error) + ")";
    }
}

} // namespace

std::string ExplainPortOpenFailure(LPCSTR portName, DWORD error) {
    const std::string name = portName ? portName : "";
    const std::string path = DevicePathOfPort(portName);
    if (path.empty())
        return "\"" + PrintableText(name) +
               "\": no port and no known modem; a serial device is named by its full path, such as "
               "/dev/ttyUSB0";
    const std::string shown = path == name ? name : name + " (" + path + ")";
    return PrintableText(shown) + ": " + Explain(path, error);
}

} // namespace platform
