// The first player that starts is left to itself; whether it can play the file is not awaited.
#include "platform/Notification.h"

#include "platform/Error.h"
#include "platform/notify/DetachedProcess.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// The best first: those of the sound servers go where the desktop's sound goes, the last one needs
// none. Quiet is what keeps a player from telling what it does, if it has to be told.
struct Player {
    const char* name;
    const char* quiet;
};
constexpr Player kPlayers[] = {
    {"pw-play", nullptr},
    {"paplay", nullptr},
    {"aplay", "-q"},
};

bool IsRegularFile(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

// The path of a program in one of the folders of PATH; empty when it is in none. A folder that
// depends on where the process is would let a downloaded file be the program.
std::string FindProgram(std::string_view folders, const char* name) {
    while (!folders.empty()) {
        const std::string_view folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        if (!folder.starts_with('/'))
            continue;
        std::string path = std::string(folder) + '/' + name;
        if (IsRegularFile(path.c_str()) && access(path.c_str(), X_OK) == 0)
            return path;
    }
    return "";
}

} // namespace

BOOL sndPlaySoundA(LPCSTR lpszSound, UINT) {
    if (lpszSound == nullptr)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    if (!IsRegularFile(lpszSound))
        return platform::FailWith(ERROR_FILE_NOT_FOUND);
    const std::string file =
        *lpszSound == '-' ? std::string("./") + lpszSound : lpszSound; // and no option
    const char* const folders = std::getenv("PATH");
    for (const Player& player : kPlayers) {
        const std::string program = FindProgram(folders != nullptr ? folders : "", player.name);
        if (program.empty())
            continue;
        std::vector<const char*> arguments = {player.name};
        if (player.quiet != nullptr)
            arguments.push_back(player.quiet);
        arguments.push_back(file.c_str());
        arguments.push_back(nullptr);
        if (platform::StartDetached(program.c_str(), arguments.data()))
            return TRUE;
    }
    return platform::FailWith(ERROR_MOD_NOT_FOUND);
}
