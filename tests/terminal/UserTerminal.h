// A terminal of the test's own in the place of standard input and output. It has 24 rows of 80
// columns. What the console calls yield is looked at after it is gone: until then the test's own
// output would go into it.
#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

class CUserTerminal {
  public:
    CUserTerminal() {
        static const Pair pair = MakePair();
        m_nMaster = pair.master;
        m_nSavedInput = Replace(STDIN_FILENO, pair.slave);
        m_nSavedOutput = Replace(STDOUT_FILENO, pair.slave);
    }
    CUserTerminal(const CUserTerminal&) = delete;
    CUserTerminal& operator=(const CUserTerminal&) = delete;
    ~CUserTerminal() {
        TakeOutput();
        dup2(m_nSavedInput, STDIN_FILENO);
        dup2(m_nSavedOutput, STDOUT_FILENO);
        close(m_nSavedInput);
        close(m_nSavedOutput);
    }

    // What the user types.
    void Type(std::string_view keys) {
        if (write(m_nMaster, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
            throw std::runtime_error("the keys do not fit");
    }

    // Takes what has been sent to the terminal, so that there is room for more.
    void TakeOutput() {
        char buffer[4096];
        while (read(m_nMaster, buffer, sizeof(buffer)) > 0)
            ;
    }

  private:
    struct Pair {
        int master;
        int slave;
    };

    static Pair MakePair() {
        setenv("TERM", "xterm-256color", 1);
        winsize size = {};
        size.ws_row = 24;
        size.ws_col = 80;
        Pair pair;
        if (openpty(&pair.master, &pair.slave, nullptr, nullptr, &size) != 0)
            throw std::runtime_error("no pseudo-terminal");
        fcntl(pair.master, F_SETFL, O_NONBLOCK);
        return pair;
    }

    static int Replace(int descriptor, int replacement) {
        const int saved = dup(descriptor);
        dup2(replacement, descriptor);
        return saved;
    }

    int m_nMaster = -1;
    int m_nSavedInput = -1;
    int m_nSavedOutput = -1;
};
