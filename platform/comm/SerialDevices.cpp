#include "platform/comm/SerialDevices.h"

#include "platform/Comm.h"
#include "platform/objects/Descriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace platform {
namespace {

const std::string kClassFolder = "/sys/class/tty/";
constexpr std::string_view kOnBoardPrefix = "ttyS";
// Terminals of virtual machines and firmware: consoles, whatever is behind them.
constexpr std::string_view kConsolePrefix = "hvc";
// The kernel has no more minor numbers for all serial drivers together.
constexpr std::size_t kMostDevices = 4096;

// "ttyUSB12" is ("ttyUSB", 12).
std::pair<std::string_view, unsigned> SplitName(std::string_view name) {
    std::size_t start = name.size();
    while (start > 0 && name[start - 1] >= '0' && name[start - 1] <= '9')
        --start;
    unsigned number = 0;
    std::from_chars(name.data() + start, name.data() + name.size(), number);
    return {name.substr(0, start), number};
}

// The first byte of an attribute; 0 when the device does not have it.
char ReadAttribute(const std::string& path) {
    const CDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    char first = 0;
    if (!file || read(file.Get(), &first, 1) != 1)
        return 0;
    return first;
}

bool IsThere(const std::string& device) {
    const bool hasHardware = access((device + "/device").c_str(), F_OK) == 0;
    return hasHardware && ReadAttribute(device + "/type") != '0' &&
           ReadAttribute(device + "/console") != 'Y';
}

} // namespace

std::string SerialDevice::GetPortName() const {
    if (isOnBoard)
        return "COM" + std::to_string(SplitName(name).second + 1);
    return "/dev/" + name;
}

std::vector<SerialDevice> ListSerialDevices(const std::string& folder) {
    std::vector<SerialDevice> devices;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
    while (const dirent* entry = listing ? readdir(listing.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name.starts_with('.') || name.starts_with(kConsolePrefix))
            continue;
        if (devices.size() < kMostDevices && IsThere(folder + "/" + entry->d_name))
            devices.push_back({std::string(name), SplitName(name).first == kOnBoardPrefix});
    }
    std::sort(devices.begin(), devices.end(), [](const SerialDevice& a, const SerialDevice& b) {
        return SplitName(a.name) < SplitName(b.name);
    });
    return devices;
}

std::string FindSerialDevice(const std::string& name) {
    if (name.empty() || name.find('/') != std::string::npos)
        return {};
    const std::string path = "/dev/" + name;
    char target[PATH_MAX];
    if (realpath(path.c_str(), target) == nullptr)
        return {};
    const std::string kernelName(
        std::string_view(target).substr(std::string_view(target).find_last_of('/') + 1));
    const bool isSerial = access((kClassFolder + kernelName + "/device").c_str(), F_OK) == 0;
    return isSerial ? path : std::string();
}

} // namespace platform
