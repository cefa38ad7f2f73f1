// Who has a device open is read off /proc: first the holder of the lock that every port of ours
// takes, which is one file to read, then any process with a descriptor of the device.
#include "platform/comm/CommUsers.h"

#include "platform/Comm.h"
#include "platform/terminal/TerminalDevice.h"

#include <dirent.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace platform {
namespace {

struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
};
struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using FilePointer = std::unique_ptr<FILE, CloseFile>;
using FolderPointer = std::unique_ptr<DIR, CloseFolder>;

constexpr std::size_t kLineLength = 256;
constexpr char kDeviceFolder[] = "/dev/";

// The number that a folder of /proc is named by; 0 for other entries.
pid_t NumberOf(const char* entry) {
    char* end = nullptr;
    const long number = std::strtol(entry, &end, 10);
    return *end == '\0' && number > 0 ? static_cast<pid_t>(number) : 0;
}

// A line is "7: FLOCK  ADVISORY  WRITE 1234 00:05:678 0 EOF": process, then device and inode of the
// file.
pid_t FindLockHolder(const struct stat& device) {
    const FilePointer locks(fopen("/proc/locks", "re"));
    char line[kLineLength];
    while (locks && fgets(line, sizeof line, locks.get())) {
        int process = 0;
        unsigned majorNumber = 0;
        unsigned minorNumber = 0;
        unsigned long inode = 0;
        if (sscanf(line, "%*u: FLOCK %*s %*s %d %x:%x:%lu", &process, &majorNumber, &minorNumber,
                   &inode) == 4 &&
            process > 0 && makedev(majorNumber, minorNumber) == device.st_dev &&
            inode == device.st_ino)
            return process;
    }
    return 0;
}

// The link is read first: following one to a file somewhere else may block.
bool IsLinkTo(int folder, const char* entry, dev_t device) {
    char target[sizeof kDeviceFolder];
    const ssize_t length = readlinkat(folder, entry, target, sizeof target);
    if (length < static_cast<ssize_t>(std::strlen(kDeviceFolder)) ||
        std::strncmp(target, kDeviceFolder, std::strlen(kDeviceFolder)) != 0)
        return false;
    struct stat status {};
    return fstatat(folder, entry, &status, 0) == 0 && S_ISCHR(status.st_mode) &&
           status.st_rdev == device;
}

// The other end of a pseudo-terminal tells in its notes "tty-index:<TAB>7" which one it is.
bool IsOtherEnd(const std::string& notesPath, dev_t device) {
    const FilePointer notes(fopen(notesPath.c_str(), "re"));
    char line[kLineLength];
    while (notes && fgets(line, sizeof line, notes.get())) {
        unsigned index = 0;
        if (sscanf(line, "tty-index: %u", &index) == 1)
            return index == minor(device);
    }
    return false;
}

// Whoever provides a pseudo-terminal may have both its ends open, and is no user of it.
bool IsProvider(const char* process, dev_t device) {
    if (!IsPseudoTerminal(device))
        return false;
    const std::string path = std::string("/proc/") + process + "/fdinfo";
    const FolderPointer folder(opendir(path.c_str()));
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        if (IsOtherEnd(path + '/' + entry->d_name, device))
            return true;
    }
    return false;
}

bool HasOpen(const char* process, dev_t device) {
    const std::string path = std::string("/proc/") + process + "/fd";
    const FolderPointer folder(opendir(path.c_str()));
    if (!folder)
        return false;
    while (const dirent* entry = readdir(folder.get())) {
        if (IsLinkTo(dirfd(folder.get()), entry->d_name, device))
            return true;
    }
    return false;
}

pid_t FindOpener(dev_t device) {
    const FolderPointer processes(opendir("/proc"));
    if (!processes)
        return 0;
    while (const dirent* entry = readdir(processes.get())) {
        const pid_t process = NumberOf(entry->d_name);
        if (process != 0 && HasOpen(entry->d_name, device) && !IsProvider(entry->d_name, device))
            return process;
    }
    return 0;
}

std::string NameOf(pid_t process) {
    const std::string path = "/proc/" + std::to_string(process) + "/comm";
    const FilePointer file(fopen(path.c_str(), "re"));
    char name[kLineLength];
    if (!file || !fgets(name, sizeof name, file.get()))
        return {};
    return std::string(name, std::strcspn(name, "\n"));
}

} // namespace

bool IsDeviceOpenIn(DWORD process, const std::string& devicePath) {
    struct stat device {};
    return stat(devicePath.c_str(), &device) == 0 &&
           HasOpen(std::to_string(process).c_str(), device.st_rdev);
}

bool IsDeviceUserSeen(const std::string& devicePath) {
    struct stat device {};
    return stat(devicePath.c_str(), &device) == 0 && FindCommUser(device).process != 0;
}

CommUser FindCommUser(const struct stat& device) {
    pid_t process = FindLockHolder(device);
    if (process == 0)
        process = FindOpener(device.st_rdev);
    if (process == 0)
        return {};
    return {process, NameOf(process)};
}

} // namespace platform
