#include "tests/support/DeviceNamespace.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* kClassFolder = "/sys/class/tty";
constexpr const char* kDeviceFolder = "/sys/devices/fake";
constexpr const char* kDatabaseFolder = "/run/udev/data";
constexpr const char* kHiddenFolders[] = {"/sys", "/run", "/etc/wirelet"};

void Write(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
}

// Without privileges: as the same user in a user namespace.
bool UnshareAsUser() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    Write("/proc/self/setgroups", "deny");
    Write("/proc/self/uid_map", user + " " + user + " 1");
    Write("/proc/self/gid_map", group + " " + group + " 1");
    return true;
}

// What a user may do in a namespace of his own, tests of permissions must not.
bool DropPrivileges() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

bool Unshare() {
    if (unshare(CLONE_NEWNS) != 0 && !UnshareAsUser())
        return false;
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return false;
    for (const char* const folder : kHiddenFolders) {
        if (fs::exists(folder) && mount("none", folder, "tmpfs", 0, nullptr) != 0)
            return false;
    }
    // The library of the device database would see that this is no real sysfs.
    setenv("SYSTEMD_DEVICE_VERIFY_SYSFS", "0", 1);
    fs::create_directories(kClassFolder);
    return geteuid() == 0 || DropPrivileges();
}

fs::path PlaceUsbInterface(const FakeInterface& fake) {
    const fs::path hardware = fs::path(kDeviceFolder) / fake.hardware;
    const fs::path interface = hardware / (fake.hardware + ":1." + fake.number);
    fs::create_directories("/sys/bus/usb");
    Write(hardware / "uevent", "DEVTYPE=usb_device\n");
    Write(interface / "uevent", "DEVTYPE=usb_interface\n");
    for (const fs::path& device : {hardware, interface}) {
        if (!fs::is_symlink(device / "subsystem"))
            fs::create_symlink("/sys/bus/usb", device / "subsystem");
    }
    Write(interface / "bInterfaceClass", fake.kind.substr(0, 2));
    Write(interface / "bInterfaceSubClass", fake.kind.substr(2, 2));
    Write(interface / "bInterfaceProtocol", fake.kind.substr(4, 2));
    Write(interface / "bInterfaceNumber", fake.number);
    Write(interface / "interface", fake.role);
    return interface;
}

void Place(const FakeInterface& fake, int minor) {
    const fs::path parent =
        fake.hardware.empty() ? fs::path(kDeviceFolder) / "platform" : PlaceUsbInterface(fake);
    const fs::path tty = parent / fake.name / "tty" / fake.name;
    // The major number of USB serial adapters.
    const std::string number = "188:" + std::to_string(minor);
    Write(tty / "uevent",
          "MAJOR=188\nMINOR=" + std::to_string(minor) + "\nDEVNAME=" + fake.node + "\n");
    fs::create_symlink(kClassFolder, tty / "subsystem");
    fs::create_symlink(parent, tty / "device");
    fs::create_symlink(tty, fs::path(kClassFolder) / fake.name);
    std::string database;
    for (const auto& [name, value] : fake.properties)
        database.append("E:").append(name).append("=").append(value).append("\n");
    Write(fs::path(kDatabaseFolder) / ("c" + number), database);
}

} // namespace

// A copy of this process tries it first: half a namespace is worse than none.
const std::string& CDeviceNamespace::Enter() {
    static const std::string problem = [] {
        const pid_t trial = fork();
        if (trial == 0)
            _exit(Unshare() ? 0 : std::max(errno, 1));
        int status = 0;
        waitpid(trial, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0 && Unshare())
            return std::string();
        return std::string("needs a mount namespace of its own: ") +
               std::strerror(WEXITSTATUS(status));
    }();
    return problem;
}

void CDeviceNamespace::SetInterfaces(const std::vector<FakeInterface>& interfaces) {
    for (const char* const folder : {kClassFolder, kDeviceFolder, kDatabaseFolder})
        fs::remove_all(folder);
    fs::create_directories(kClassFolder);
    int minor = 0;
    for (const FakeInterface& fake : interfaces)
        Place(fake, minor++);
}
