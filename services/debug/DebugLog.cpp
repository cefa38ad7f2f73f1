#include "services/debug/DebugLog.h"

#include "diagnostics/DebugModule.h"
#include "services/debug/MessageText.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <syslog.h>
#include <unistd.h>

namespace debugmodule {
namespace {

constexpr char kFileVariable[] = "VXDEBUG_FILE";
constexpr char kJournalPath[] = "/run/systemd/journal/socket";

// For its owner alone: commands may hold a PIN.
constexpr mode_t kFileMode = 0600;

// Written in one piece, between those of others, by every kind of file; and what a pipe that says
// it has room takes without blocking.
constexpr std::size_t kLongestLine = PIPE_BUF;

// A pipe whose reader has gone must not end the program: the signal of a write is taken back on
// the thread that wrote.
class CPipeSignalHeld {
  public:
    CPipeSignalHeld() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending{};
        sigpending(&pending);
        m_bWasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    CPipeSignalHeld(const CPipeSignalHeld&) = delete;
    CPipeSignalHeld& operator=(const CPipeSignalHeld&) = delete;
    ~CPipeSignalHeld() {
        constexpr timespec kAtOnce{};
        while (!m_bWasPending && sigtimedwait(&m_pipe, nullptr, &kAtOnce) < 0 && errno == EINTR)
            continue;
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

  private:
    sigset_t m_pipe{};
    sigset_t m_before{};
    bool m_bWasPending = false;
};

bool HasRoom(int descriptor) {
    pollfd entry = {descriptor, POLLOUT, 0};
    return poll(&entry, 1, 0) == 1 && (entry.revents & POLLOUT) != 0;
}

bool WriteLine(int descriptor, const std::string& line) {
    const CPipeSignalHeld held;
    ssize_t written = 0;
    do
        written = write(descriptor, line.data(), line.size());
    while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(line.size());
}

bool WriteToStandardError(const std::string& line) {
    return isatty(STDERR_FILENO) == 0 && HasRoom(STDERR_FILENO) && WriteLine(STDERR_FILENO, line);
}

std::string MakeLine(const std::string& message, DWORD level) {
    std::string line = DescribeTime() + ' ' + DescribeLevel(level) + ' ' + message;
    line.resize(std::min(line.size(), kLongestLine - 1));
    return line + '\n';
}

} // namespace

CDebugLog::CDebugLog() : m_journal(kJournalPath) {
    const char* const name = std::getenv(kFileVariable);
    if (name == nullptr || *name == '\0')
        return;
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    m_bFileNamed = true;
    m_nFile = open(name, kFlags, kFileMode);
}

CDebugLog::~CDebugLog() {
    if (m_nFile >= 0)
        close(m_nFile);
}

bool CDebugLog::Write(const std::string& moduleName, const std::string& text, DWORD level) const {
    const std::string message = MakeSafeText(moduleName) + ": " + MakeSafeText(text);
    const std::string line = MakeLine(message, level);
    if (m_bFileNamed)
        return WriteToFile(line) || WriteToStandardError(line) || WriteToJournal(message, level);
    return WriteToJournal(message, level) || WriteToStandardError(line);
}

bool CDebugLog::WriteToFile(const std::string& line) const {
    return m_nFile >= 0 && WriteLine(m_nFile, line);
}

bool CDebugLog::WriteToJournal(const std::string& message, DWORD level) const {
    return m_journal.Write(level == DEBUG_LEVEL_ERROR ? LOG_ERR : LOG_DEBUG, message);
}

} // namespace debugmodule
