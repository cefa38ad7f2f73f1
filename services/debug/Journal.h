// CJournal: the system's journal, spoken to in its own protocol, so that a message keeps its lines.
//
// That is one datagram a message. The journal's library would do the same, but brings five other
// libraries into the program and leaves its socket behind when the module is unloaded. Any thread
// may write; nothing blocks.
#pragma once

#include <string>
#include <sys/un.h>

namespace debugmodule {

class CJournal {
  public:
    // The path is that of the journal's socket.
    explicit CJournal(const char* path);
    CJournal(const CJournal&) = delete;
    CJournal& operator=(const CJournal&) = delete;
    ~CJournal();

    // Sends a message with a syslog priority. False when there is no journal, or when it does not
    // take the message.
    bool Write(int priority, const std::string& message) const;

  private:
    int m_nSocket;
    sockaddr_un m_address{};
};

} // namespace debugmodule
