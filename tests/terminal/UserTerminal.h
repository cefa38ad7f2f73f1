// A terminal of the test's own in the place of standard input and output. It has 24 rows of 80
// columns. What the console calls yield is looked at after it is gone: until then the test's own
// output would go into it.
#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

class CUserTerminal {
  public:
    CUserTerminal() {
        setenv("TERM", "xterm-256color", 1);
        winsize size = {};
        size.ws_row = 24;
        size.ws_col = 80;
        if (openpty(&m_nMaster, &m_nSlave, nullptr, nullptr, &size) != 0)
            throw std::runtime_error("no pseudo-terminal");
        fcntl(m_nMaster, F_SETFL, O_NONBLOCK);
        m_nSavedInput = Replace(STDIN_FILENO, m_nSlave);
        m_nSavedOutput = Replace(STDOUT_FILENO, m_nSlave);
    }
    CUserTerminal(const CUserTerminal&) = delete;
    CUserTerminal& operator=(const CUserTerminal&) = delete;
    ~CUserTerminal() {
        dup2(m_nSavedInput, STDIN_FILENO);
        dup2(m_nSavedOutput, STDOUT_FILENO);
        for (const int descriptor : {m_nSavedInput, m_nSavedOutput, m_nSlave, m_nMaster})
            close(descriptor);
    }

    // What the user types.
    void Type(std::string_view keys) {
        if (write(m_nMaster, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
            throw std::runtime_error("the keys do not fit");
    }

    // What has been sent to the terminal so far.
    std::string TakeOutput() {
        std::string output;
        char buffer[4096];
        for (ssize_t count; (count = read(m_nMaster, buffer, sizeof(buffer))) > 0;)
            output.append(buffer, static_cast<std::size_t>(count));
        return output;
    }

  private:
    static int Replace(int descriptor, int replacement) {
        const int saved = dup(descriptor);
        dup2(replacement, descriptor);
        return saved;
    }

    int m_nMaster = -1;
    int m_nSlave = -1;
    int m_nSavedInput = -1;
    int m_nSavedOutput = -1;
};
