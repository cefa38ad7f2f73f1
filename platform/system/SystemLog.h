// CSystemLog: the system log, spoken to in its daemons' own form: facility user, ident wirelet, so
// that `journalctl -t wirelet` shows it.
//
// One datagram a text, to whichever daemon has the socket at that moment: one that starts later or
// anew is found. Nothing blocks: a text that the daemon has no room for, and one that nobody takes,
// is lost, and the next one that passes begins with how many were. Any thread may write.
#pragma once

#include <atomic>
#include <string>

namespace platform {

enum class LogSeverity { Warning = 4, Debug = 7 };

class CSystemLog {
  public:
    // The path is that of the daemon's socket.
    explicit CSystemLog(const char* path) : m_szPath(path) {}

    // Writes one text, whole. Cannot fail; what memory there is not enough for is lost too.
    void Write(LogSeverity severity, const char* text) noexcept;

  private:
    bool Send(const std::string& datagram) const;

    const char* const m_szPath;
    std::atomic<unsigned long> m_ulLost = 0;
};

// The one of this system.
CSystemLog& SystemLog();

} // namespace platform
