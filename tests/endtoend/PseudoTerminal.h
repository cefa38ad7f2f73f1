// A pseudo-terminal pair made for one test. It keeps both ends open, so that its settings can be
// read after the program has gone; both close when it goes.
#pragma once

#include "tests/endtoend/ByteQueue.h"
#include "tests/endtoend/Descriptor.h"

#include <string>
#include <string_view>
#include <termios.h>

class CPseudoTerminal {
  public:
    CPseudoTerminal();

    int GetMaster() const { return m_master.Get(); }
    int GetSlave() const { return m_slave.Get(); }
    const std::string& GetPath() const { return m_path; }

    termios GetSettings() const;
    void ApplySettings(const termios& settings);
    void SetSize(int rows, int columns);

    // Closes the master: for whoever uses the slave, the device is unplugged.
    void CloseMaster() { m_master.Reset(); }

    // Reads what is there without waiting.
    std::string Read(std::size_t limit);
    // Takes from the front of the queue what fits now.
    void Write(CByteQueue& bytes);

  private:
    CDescriptor m_master;
    CDescriptor m_slave;
    std::string m_path;
};

// Field by field, as a user would notice it.
bool operator==(const termios& left, const termios& right);
