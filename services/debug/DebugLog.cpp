// A message becomes one line, which is offered to one taker after the other until one has it. None
// of them may block or end the program: each is asked for room first, or refuses by itself, and the
// signal of a broken pipe is taken back.
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
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

// The place in the source would be this one for every message.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

namespace debugmodule {
namespace {

constexpr char kFileVariable[] = "VXDEBUG_FILE";
constexpr sockaddr_un kJournal = {AF_UNIX, "/run/systemd/journal/socket"};

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

// What the library does not tell: it takes it for a success that there is no journal, and waits for
// one that takes nothing.
bool IsJournalReady() {
    const int probe = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool isReady =
        connect(probe, reinterpret_cast<const sockaddr*>(&kJournal), sizeof kJournal) == 0 &&
        HasRoom(probe);
    close(probe);
    return isReady;
}

// As fields, so that a message keeps its lines.
bool WriteToJournal(const std::string& message, DWORD level) {
    if (!IsJournalReady())
        return false;
    std::string fields[] = {
        "MESSAGE=" + message,
        "PRIORITY=" + std::to_string(level == DEBUG_LEVEL_ERROR ? LOG_ERR : LOG_DEBUG),
        "SYSLOG_IDENTIFIER=wirelet",
    };
    iovec parts[std::size(fields)];
    std::transform(std::begin(fields), std::end(fields), parts, [](std::string& field) {
        return iovec{field.data(), field.size()};
    });
    return sd_journal_sendv(parts, std::size(parts)) == 0;
}

std::string MakeLine(const std::string& message, DWORD level) {
    std::string line = DescribeTime() + ' ' + DescribeLevel(level) + ' ' + message;
    line.resize(std::min(line.size(), kLongestLine - 1));
    return line + '\n';
}

} // namespace

CDebugLog::CDebugLog() {
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

} // namespace debugmodule
