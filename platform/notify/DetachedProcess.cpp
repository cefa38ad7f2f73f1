// A process between this one and the program starts the program and ends at once: that makes the
// program nobody's child here. What the program is to find is told to posix_spawn, which also knows
// whether it runs; the process between hands the answer on as its exit code.
#include "platform/notify/DetachedProcess.h"

#include "platform/Error.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {
namespace {

// No state of this process and no terminal for the new program.
class CSpawnSettings {
  public:
    CSpawnSettings() {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_adddup2(&m_actions, STDIN_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, STDIN_FILENO, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        sigset_t signals;
        posix_spawnattr_init(&m_attributes);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        // All: those that sigfillset leaves out, the C library would have ignored.
        std::memset(&signals, 0xFF, sizeof signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                    POSIX_SPAWN_SETSIGDEF);
    }
    CSpawnSettings(const CSpawnSettings&) = delete;
    CSpawnSettings& operator=(const CSpawnSettings&) = delete;
    ~CSpawnSettings() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }

    // 0, or the errno value of the failure.
    int Spawn(const char* path, const char* const* arguments) const {
        pid_t program = 0;
        return posix_spawn(&program, path, &m_actions, &m_attributes,
                           const_cast<char* const*>(arguments), environ);
    }

  private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

} // namespace

BOOL StartDetached(const char* path, const char* const* arguments) {
    const CSpawnSettings settings;
    // No handler of this process may run in its copy.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t between = fork();
    if (between == 0)
        _exit(settings.Spawn(path, arguments));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (between < 0)
        return FailWithErrno();
    int status = 0;
    while (waitpid(between, &status, 0) < 0 && errno == EINTR)
        continue;
    const int error = WIFEXITED(status) ? WEXITSTATUS(status) : ECHILD;
    return error != 0 ? FailWith(ErrorFromErrno(error)) : TRUE;
}

} // namespace platform
