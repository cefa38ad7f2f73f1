// The console calls in a process of their own on a terminal of their own: taking over, signals,
// crashes, and what they leave behind.
#include "platform/Console.h"
#include "platform/HandleObject.h"
#include "platform/Wait.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using platform::CDescriptor;

namespace {

HANDLE g_hInput;
HANDLE g_hOutput;
DWORD g_dwMode;

void Say(std::string_view text) {
    DWORD written = 0;
    WriteConsoleA(g_hOutput, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

INPUT_RECORD TakeRecord() {
    INPUT_RECORD record{};
    DWORD count = 0;
    ReadConsoleInputA(g_hInput, &record, 1, &count);
    return record;
}

void GiveBack();

BOOL OnControlEvent(DWORD event) {
    Say("event " + std::to_string(event) + ";");
    if (event != CTRL_C_EVENT)
        GiveBack();
    return TRUE;
}

void TakeOver() {
    setenv("TERM", "xterm", 1);
    g_hInput = GetStdHandle(STD_INPUT_HANDLE);
    g_hOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    GetConsoleMode(g_hInput, &g_dwMode);
    SetConsoleMode(g_hInput, 0);
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

void GiveBack() {
    SetConsoleMode(g_hInput, g_dwMode);
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
}

// What a child does: says each key it gets, until the console is given back by an event.
void Echo() {
    TakeOver();
    SetConsoleTitleA("echo");
    Say("ready;");
    DWORD mode = 0;
    while (mode == 0) {
        const INPUT_RECORD record = TakeRecord();
        if (record.EventType == KEY_EVENT)
            Say("key " + std::to_string(record.Event.KeyEvent.uChar.AsciiChar) + ";");
        GetConsoleMode(g_hInput, &mode);
    }
}

// A child that says nothing for this long is stuck.
constexpr int STUCK_MILLISECONDS = 30'000;

bool IsReadable(int descriptor, int milliseconds = STUCK_MILLISECONDS) {
    pollfd polled = {descriptor, POLLIN, 0};
    return poll(&polled, 1, milliseconds) > 0;
}

class CChild {
  public:
    explicit CChild(const std::function<void()>& work) {
        int slave = -1;
        int master = -1;
        const winsize size{25, 80, 0, 0};
        EXPECT_EQ(openpty(&master, &slave, nullptr, nullptr, &size), 0);
        m_master.Reset(master);
        m_slave.Reset(slave); // stays open, so that the mode can be looked at afterwards
        tcgetattr(slave, &m_found);
        m_leader = fork();
        if (m_leader == 0)
            Lead(work);
        EXPECT_EQ(read(m_numbers.reading.Get(), &m_process, sizeof m_process),
                  ssize_t{sizeof(pid_t)});
    }
    ~CChild() {
        kill(m_leader, SIGKILL); // which takes its child with it
        waitpid(m_leader, nullptr, 0);
    }

    // Reads until the text has come; what came before it and with it.
    std::string ReadUntil(std::string_view text) {
        std::string all;
        while (all.find(text) == std::string::npos) {
            char bytes[1024];
            const ssize_t count =
                IsReadable(m_master.Get()) ? read(m_master.Get(), bytes, sizeof bytes) : 0;
            if (count <= 0)
                break;
            all.append(bytes, static_cast<std::size_t>(count));
        }
        EXPECT_NE(all.find(text), std::string::npos) << text << " not in " << all;
        return all;
    }
    void Type(std::string_view text) const {
        EXPECT_EQ(write(m_master.Get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }
    void Signal(int number) const { EXPECT_EQ(kill(m_process, number), 0); }
    // The next change of the child as wait() tells it, by way of its leader.
    int Status() {
        int status = -1;
        EXPECT_TRUE(IsReadable(m_numbers.reading.Get()));
        EXPECT_EQ(read(m_numbers.reading.Get(), &status, sizeof status), ssize_t{sizeof status});
        return status;
    }
    bool HasStatus(int milliseconds) const {
        return IsReadable(m_numbers.reading.Get(), milliseconds);
    }
    bool IsModeAsFound() const {
        termios mode{};
        tcgetattr(m_slave.Get(), &mode);
        return mode.c_lflag == m_found.c_lflag && mode.c_iflag == m_found.c_iflag &&
               mode.c_oflag == m_found.c_oflag && mode.c_cc[VINTR] == m_found.c_cc[VINTR];
    }
    bool IsRaw() const {
        termios mode{};
        tcgetattr(m_slave.Get(), &mode);
        return (mode.c_lflag & (ICANON | ECHO)) == 0 && (mode.c_oflag & OPOST) == 0 &&
               (mode.c_lflag & ISIG) != 0 && mode.c_cc[VQUIT] == 0x1C;
    }

  private:
    struct Pipe {
        Pipe() {
            int ends[2] = {-1, -1};
            EXPECT_EQ(pipe(ends), 0);
            reading.Reset(ends[0]);
            writing.Reset(ends[1]);
        }
        CDescriptor reading;
        CDescriptor writing;
    };

    // The session's leader, in the place of a shell: tells what becomes of its child. A process
    // without such a parent could not be stopped.
    [[noreturn]] void Lead(const std::function<void()>& work) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setsid();
        ioctl(m_slave.Get(), TIOCSCTTY, 0);
        signal(SIGHUP, SIG_IGN);
        signal(SIGTTOU, SIG_IGN);
        const pid_t child = fork();
        if (child == 0)
            Work(work);
        setpgid(child, child);
        tcsetpgrp(m_slave.Get(), child);
        Tell(child);
        int status = 0;
        do {
            if (waitpid(child, &status, WUNTRACED | WCONTINUED) < 0)
                _exit(1);
            Tell(status);
        } while (WIFSTOPPED(status) || WIFCONTINUED(status));
        for (;;)
            pause();
    }

    [[noreturn]] void Work(const std::function<void()>& work) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0);
        tcsetpgrp(m_slave.Get(), getpid());
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTTOU, SIGTSTP})
            signal(number, SIG_DFL);
        dup2(m_slave.Get(), STDIN_FILENO);
        dup2(m_slave.Get(), STDOUT_FILENO);
        work();
        std::exit(7);
    }

    void Tell(int number) const {
        if (write(m_numbers.writing.Get(), &number, sizeof number) != sizeof number)
            _exit(1);
    }

    Pipe m_numbers;
    CDescriptor m_master;
    CDescriptor m_slave;
    termios m_found{};
    pid_t m_leader = -1;
    pid_t m_process = -1;
};

// Ends in an overflow of the stack.
[[gnu::noinline]] int Recurse(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth & 1);
    return depth < 0 ? 0 : Recurse(depth + 1) + room[0];
}

constexpr const char* TITLE_BACK = "\x1b[23;0t";

} // namespace

TEST(ConsoleProcess, WhateverEndsItTheTerminalIsSane) {
    const std::function<void()> ends[] = {
        [] { raise(SIGSEGV); },
        [] {
            void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            *static_cast<volatile int*>(page) = 1;
        },
        [] { Recurse(0); },
        [] { std::abort(); },
        [] { raise(SIGALRM); },
        [] { raise(SIGUSR1); },
        [] {
            SetConsoleCtrlHandler(OnControlEvent, FALSE);
            raise(SIGTERM);
        },
        [] { std::exit(3); },
    };
    for (const auto& end : ends) {
        CChild child([&] {
            dup2(open("/dev/null", O_WRONLY), STDERR_FILENO); // a sanitizer's report of the crash
            TakeOver();
            SetConsoleTitleA("crash");
            SetConsoleTextAttribute(g_hOutput, 0x1E);
            Say("ready");
            WaitForSingleObject(g_hInput, 1); // lets it out
            end();
        });
        const std::string text = child.ReadUntil(TITLE_BACK);
        EXPECT_LT(text.find("ready"), text.rfind("\x1b[0m"));
        const int status = child.Status();
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) != 7);
        EXPECT_TRUE(child.IsModeAsFound());
    }
}

TEST(ConsoleProcess, AThreadThatNeverWaitsIsEnded) {
    CChild child([] {
        TakeOver();
        Say("ready");
        WaitForSingleObject(g_hInput, 1);
        for (;;)
            pause();
    });
    child.ReadUntil("ready");
    do
        child.Signal(SIGTERM);
    while (!child.HasStatus(1000));
    const int status = child.Status();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_TRUE(child.IsModeAsFound());
}

TEST(ConsoleProcess, StopsAndGoesOn) {
    CChild child(Echo);
    child.ReadUntil("ready;");
    child.Signal(SIGTSTP);
    EXPECT_TRUE(WIFSTOPPED(child.Status()));
    EXPECT_TRUE(child.IsModeAsFound());
    child.Signal(SIGCONT);
    EXPECT_TRUE(WIFCONTINUED(child.Status()));
    while (!child.IsRaw())
        usleep(1000);
    child.Type("a");
    child.ReadUntil("key 97;");
    // Stopped without being asked; the shell sets the terminal up for itself.
    child.Signal(SIGSTOP);
    EXPECT_TRUE(WIFSTOPPED(child.Status()));
    child.Signal(SIGCONT);
    EXPECT_TRUE(WIFCONTINUED(child.Status()));
    child.Type("b");
    child.ReadUntil("key 98;");
    EXPECT_TRUE(child.IsRaw());
}
