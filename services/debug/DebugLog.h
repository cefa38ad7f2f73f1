// CDebugLog: where the messages go.
//
// To the file that the environment variable VXDEBUG_FILE names, behind what is in it, or to
// standard error when the file does not take a message; without the variable to the system's
// journal, or to standard error. Standard error is left alone while it is a terminal: that is the
// user's screen, on which the program is drawing. The journal is then the last resort for a file;
// what nobody takes is lost.
//
// Owned by one interface of the module. Any thread may write; nothing here blocks the program or
// ends it.
#pragma once

#include "platform/Types.h"

#include <string>

namespace debugmodule {

class CDebugLog {
  public:
    CDebugLog();
    CDebugLog(const CDebugLog&) = delete;
    CDebugLog& operator=(const CDebugLog&) = delete;
    ~CDebugLog();

    // Takes one message under a module's name. False when it is lost.
    bool Write(const std::string& moduleName, const std::string& text, DWORD level) const;

  private:
    bool WriteToFile(const std::string& line) const;

    bool m_bFileNamed = false;
    int m_nFile = -1;
};

} // namespace debugmodule
