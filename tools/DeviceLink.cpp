#include "tools/DeviceLink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace modemsim {
namespace {

// Where a symbolic link leads; empty when the path is none.
std::string Target(const std::string& path) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length))
                      : std::string{};
}

// Sets errno to EEXIST when not.
bool MayReplace(const std::string& path) {
    const std::string target = Target(path);
    struct stat status {};
    const bool stale = !target.empty() && (target.starts_with("/dev/pts/") ||
                                           (stat(path.c_str(), &status) != 0 && errno == ENOENT));
    if (!stale)
        errno = EEXIST;
    return stale;
}

// Puts a new link in the place of an old one in one step: both change places, and change back when
// what stood there was no stale link after all. False with errno set.
bool Replace(const std::string& path, const std::string& device) {
    const std::string beside = path + "." + std::to_string(getpid());
    const auto exchange = [&] {
        return renameat2(AT_FDCWD, beside.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) == 0;
    };
    if (symlink(device.c_str(), beside.c_str()) != 0)
        return false;
    bool replaced = exchange();
    if (replaced && !MayReplace(beside)) {
        exchange();
        replaced = false;
    }
    const int reason = errno;
    unlink(beside.c_str());
    errno = reason;
    return replaced;
}

} // namespace

bool CDeviceLink::Create(const std::string& path, const std::string& device, std::string& error) {
    bool made = symlink(device.c_str(), path.c_str()) == 0;
    if (!made && errno == EEXIST && MayReplace(path))
        made = Replace(path, device);
    if (!made) {
        error = "cannot make the link " + path + ": " + std::strerror(errno);
        return false;
    }
    m_strPath = path;
    m_strDevice = device;
    return true;
}

void CDeviceLink::Remove() {
    if (!m_strPath.empty() && Target(m_strPath) == m_strDevice)
        unlink(m_strPath.c_str());
    m_strPath.clear();
}

} // namespace modemsim
