// A file is read in one piece, as far as its bound, so that whoever changes it meanwhile cannot
// stop the program; what is wrong with it is told and does not stop anything either.
#include "services/telephony/NamedModems.h"

#include "platform/objects/Descriptor.h"
#include "services/telephony/NamesFile.h"
#include "services/telephony/Notice.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>

namespace telephonyservice {
namespace {

constexpr const char* kSystemFile = "/etc/wirelet/modems.conf";
constexpr const char* kUserFile = "/wirelet/modems.conf";

// Told one by one. A file that is no list of names at all has thousands.
constexpr std::size_t kMostFaults = 8;

// Empty when the user has no place for such files.
std::string FindUserFile() {
    const char* const folder = secure_getenv("XDG_CONFIG_HOME");
    if (folder != nullptr && folder[0] == '/')
        return std::string(folder) + kUserFile;
    const char* const home = secure_getenv("HOME");
    return home != nullptr && home[0] == '/' ? std::string(home) + "/.config" + kUserFile : "";
}

std::string ReadContent(const std::string& path) {
    // Not to wait for the other end of a FIFO that stands there.
    const platform::CDescriptor file(
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file) {
        if (errno != ENOENT && errno != ENOTDIR)
            TellFault(path + ": " + std::strerror(errno));
        return {};
    }
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        TellFault(path + ": is no file");
        return {};
    }
    std::string content(kLongestNamesFile + 1, '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t count = read(file.Get(), content.data() + filled, content.size() - filled);
        if (count <= 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    content.resize(filled);
    if (filled > kLongestNamesFile) {
        TellFault(path + ": is too long; what is behind its first 64 KiB is left out");
        // What is there of the last line may be another device's path.
        content.resize(content.rfind('\n', kLongestNamesFile - 1) + 1);
    }
    return content;
}

void AppendModemsOf(const std::string& path, std::vector<LineDevice>& modems) {
    std::vector<NamesFileFault> faults;
    for (LineDevice& modem : ParseNamesFile(ReadContent(path), faults))
        modems.push_back(std::move(modem));
    for (std::size_t index = 0; index < std::min(faults.size(), kMostFaults); ++index)
        TellFault(path + ":" + std::to_string(faults[index].line) + ": " + faults[index].reason);
    if (faults.size() > kMostFaults)
        TellFault(path + ": " + std::to_string(faults.size() - kMostFaults) +
                  " more lines are wrong");
}

} // namespace

std::vector<LineDevice> ReadNamedModems() {
    std::vector<LineDevice> modems;
    AppendModemsOf(kSystemFile, modems);
    const std::string userFile = FindUserFile();
    if (!userFile.empty())
        AppendModemsOf(userFile, modems);
    return modems;
}

} // namespace telephonyservice
