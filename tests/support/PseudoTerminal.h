// Pseudo-terminals made for one test, and what a test holds of another line.
#pragma once

#include "tests/support/Pipe.h"

#include <string>
#include <string_view>
#include <termios.h>

// Both ends: they stay open, so that the settings can be read after the program has gone, and close
// when it goes.
class CPseudoTerminal {
  public:
    CPseudoTerminal();
    // A device that is there, and the far end of its cable in place of the master: what was left at
    // that is discarded. There is no slave, and no settings are told.
    CPseudoTerminal(const std::string& path, const std::string& farEnd);

    int GetMaster() const { return m_master.Get(); }
    int GetSlave() const { return m_slave.Get(); }
    const std::string& GetPath() const { return m_path; }

    termios GetSettings() const;
    void ApplySettings(const termios& settings);
    void SetSize(int rows, int columns);

    // How many bytes written to the master nobody has read from the slave; 0 without a slave.
    int CountUnread() const;

    // Gives the slave away: who has it, has the device open.
    CDescriptor TakeSlave() { return std::move(m_slave); }
    // Closes the master: for whoever uses the slave, the device is unplugged.
    void CloseMaster() { m_master.Reset(); }

    // Reads what is there without waiting.
    std::string Read(std::size_t limit);
    // Writes what fits now, without waiting; how many bytes that was.
    std::size_t Write(std::string_view bytes) const;

    // As a device: writes all of it, and waits for so many bytes; fewer only on failure. Each by
    // one thread at a time.
    void Say(std::string_view text) const;
    std::string Hear(std::size_t count) { return Hear(count, count); }
    std::string Hear(std::size_t least, std::size_t most);

  private:
    bool AwaitMaster(short events) const;

    std::string m_path;
    CDescriptor m_master;
    CDescriptor m_slave;
};

// As tcgetattr tells them.
bool operator==(const termios& left, const termios& right);
