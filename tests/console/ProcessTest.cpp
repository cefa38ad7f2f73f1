// The console calls in a process of their own on a terminal of their own: crashes and other ends
// without warning, and what they leave behind.
#include "tests/support/Process.h"
#include "platform/Console.h"
#include "platform/Wait.h"
#include "tests/endtoend/Device.h"

#include <csignal>
#include <cstdlib>
#include <sys/mman.h>

namespace {

BOOL OnControlEvent(DWORD) {
    return TRUE;
}

// Takes the console over and leaves it in the middle of something.
void TakeOver() {
    setenv("TERM", "xterm", 1);
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    SetConsoleMode(input, 0);
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
    SetConsoleTitleA("title");
    SetConsoleTextAttribute(output, 0x1E);
    DWORD written = 0;
    WriteConsoleA(output, "ready", 5, &written, nullptr);
    WaitForSingleObject(input, 1); // lets it out
}

// A process of its own that has taken its terminal over.
struct Child {
    explicit Child(const std::function<void()>& end) {
        ProcessOptions options;
        options.input = options.output = terminal.GetLine().GetSlave();
        options.terminal = terminal.GetPath();
        options.work = [&] {
            TakeOver();
            end();
        };
        process = std::make_unique<CProcess>(options);
        pump.Add(terminal);
        pump.Add(*process);
        EXPECT_TRUE(Says("ready"));
    }
    bool Says(std::string_view text) {
        return pump.RunUntil(
            [&] { return terminal.GetReceived().find(text) != std::string::npos; });
    }
    bool Ends(std::chrono::seconds patience = CPump::kPatience) {
        return pump.RunUntil([this] { return process->HasEnded(); }, patience);
    }
    bool IsTerminalAsFound() { return terminal.GetLine().GetSettings() == found; }

    CPump pump;
    CDevice terminal{false};
    termios found = terminal.GetLine().GetSettings();
    std::unique_ptr<CProcess> process;
};

// Ends in an overflow of the stack.
[[gnu::noinline]] int Recurse(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth & 1);
    return depth < 0 ? 0 : Recurse(depth + 1) + room[0];
}

} // namespace

TEST(ConsoleProcess, WhateverEndsItTheTerminalIsSane) {
    const std::function<void()> ends[] = {
        [] {
            void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            *static_cast<volatile int*>(page) = 1;
        },
        [] { Recurse(0); },
        [] {
            SetConsoleCtrlHandler(OnControlEvent, FALSE);
            raise(SIGTERM);
        },
        [] { std::exit(3); },
    };
    for (const auto& end : ends) {
        Child child(end);
        EXPECT_TRUE(child.Says("\x1b[23;0t")) << "the title from before";
        const std::string& text = child.terminal.GetReceived();
        EXPECT_LT(text.find("ready"), text.rfind("\x1b[0m"));
        EXPECT_TRUE(child.Ends());
        EXPECT_NE(child.process->GetExit(), CProcess::kWorkDone);
        EXPECT_TRUE(child.IsTerminalAsFound());
    }
}

TEST(ConsoleProcess, AThreadThatNeverWaitsIsEnded) {
    Child child([] {
        for (;;)
            pause();
    });
    do
        child.process->Kill(SIGTERM);
    while (!child.Ends(std::chrono::seconds(1)));
    EXPECT_EQ(child.process->GetExit(), -SIGTERM);
    EXPECT_TRUE(child.IsTerminalAsFound());
}
