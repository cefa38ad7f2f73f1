// Taking the terminal over from a shell: what was typed before, and a start in the background.
#include "console/Console.h"
#include "tests/console/ConsoleTest.h"

#include <csignal>
#include <sys/wait.h>

namespace {

// Takes the console over and tells each key's number, until q.
void TellKeys() {
    const HANDLE hInput = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    GetConsoleMode(hInput, &mode);
    SetConsoleMode(hInput, 0);
    INPUT_RECORD record{};
    DWORD count = 0;
    while (record.Event.KeyEvent.uChar.AsciiChar != 'q' &&
           ReadConsoleInputA(hInput, &record, 1, &count)) {
        const std::string text = std::to_string(record.Event.KeyEvent.uChar.AsciiChar) + ';';
        WriteConsoleA(GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()),
                      nullptr, nullptr);
    }
    SetConsoleMode(hInput, mode);
}

pid_t StartInBackground() {
    std::signal(SIGTTOU, SIG_IGN);
    const pid_t program = fork();
    if (program == 0) {
        setpgid(0, 0);
        std::signal(SIGTTOU, SIG_DFL);
        TellKeys();
        std::exit(0);
    }
    setpgid(program, program);
    return program;
}

BOOL EndAtOnce(DWORD) {
    std::exit(CProcess::kWorkDone);
}

void AwaitStop(pid_t program) {
    int status = 0;
    if (waitpid(program, &status, WUNTRACED) != program || !WIFSTOPPED(status))
        std::exit(1);
}

// A shell's &, bg and fg, one after the other; the line editor's mode is another than a program's.
void RunInBackground() {
    termios usual{};
    tcgetattr(STDIN_FILENO, &usual);
    termios editing = usual;
    editing.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &editing);
    const pid_t program = StartInBackground();
    AwaitStop(program);
    kill(-program, SIGCONT);
    AwaitStop(program);
    tcsetattr(STDIN_FILENO, TCSANOW, &usual);
    tcsetpgrp(STDIN_FILENO, program);
    kill(-program, SIGCONT);
    int status = 0;
    waitpid(program, &status, 0);
}

// A shell's &, then its kill, which lets a stopped process go on.
void EndInBackground() {
    SetConsoleCtrlHandler(EndAtOnce, TRUE);
    const pid_t program = StartInBackground();
    AwaitStop(program);
    kill(-program, SIGTERM);
    kill(-program, SIGCONT);
    int status = 0;
    waitpid(program, &status, WUNTRACED);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != CProcess::kWorkDone)
        std::_Exit(1);
}

} // namespace

using ForegroundTest = CConsoleTest;

TEST_F(ForegroundTest, WhatWasTypedToTheShellHasEnterAsAKey) {
    Start([] {
        raise(SIGSTOP);
        TellKeys();
    });
    Type("a\rb");
    ASSERT_TRUE(Shows("b") && Waits([this] { return process->IsStopped(); }));
    process->Kill(SIGCONT);
    ASSERT_TRUE(Shows("97;13;98;"));
    Type("\n\rq");
    ASSERT_TRUE(Shows("97;13;98;10;13;113;"));
    EXPECT_TRUE(EndsWith(CProcess::kWorkDone));
}

TEST_F(ForegroundTest, AWaitForAKeyInTheBackgroundStopsUntilTheTerminalIsThere) {
    Start(RunInBackground);
    ASSERT_TRUE(Waits([&] { return (line.GetSettings().c_iflag & ICRNL) == 0; }));
    Type("\n\rq");
    ASSERT_TRUE(Shows("10;13;113;"));
    EXPECT_TRUE(EndsWith(CProcess::kWorkDone));
}

TEST_F(ForegroundTest, ASignalEndsWhatStoppedInTheBackground) {
    Start(EndInBackground);
    EXPECT_TRUE(EndsWith(CProcess::kWorkDone));
}
