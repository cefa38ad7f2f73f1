// Console calls in a process of its own, on a terminal of its own whose user sees and types.
#pragma once

#include "tests/endtoend/Terminal.h"
#include "tests/support/Collector.h"
#include "tests/support/Process.h"

#include <cstdlib>
#include <memory>

class CConsoleTest : public ::testing::Test {
  protected:
    void Start(std::function<void()> work, const char* terminalType = "xterm") {
        StartOn(line.GetSlave(), line.GetSlave(), std::move(work), terminalType);
    }
    void StartOn(int input, int output, std::function<void()> work,
                 const char* terminalType = "xterm") {
        ProcessOptions options;
        options.input = input;
        options.output = output;
        options.error = error.GetWriter();
        options.terminal = line.GetPath();
        options.work = [terminalType, run = std::move(work)] {
            unsetenv("TMUX");
            setenv("TERM", terminalType, 1);
            run();
        };
        process = std::make_unique<CProcess>(options);
        error.CloseWriter();
        pump.Add(user);
        pump.Add(error);
        pump.Add(*process);
    }

    void Type(std::string_view bytes) { user.Type(bytes); }
    bool Waits(const std::function<bool()>& condition) {
        const bool came = pump.RunUntil(condition);
        EXPECT_TRUE(came) << screen.GetText();
        return came;
    }
    bool Shows(std::string_view text) {
        return Waits([&] { return screen.FindRow(text) >= 0; });
    }
    // The process is over, and the terminal's settings are what they were.
    bool Ends() {
        const bool ended = Waits([&] { return process->HasEnded() && error.HasEnded(); });
        EXPECT_TRUE(line.GetSettings() == found);
        return ended;
    }
    bool EndsWith(int exit) {
        const bool ended = Ends();
        EXPECT_EQ(process->GetExit(), exit);
        return ended;
    }

    CPump pump;
    CTerminal user;
    CPseudoTerminal& line = user.GetLine();
    CScreen& screen = user.GetScreen();
    CCollector error;
    termios found = line.GetSettings();
    std::unique_ptr<CProcess> process;
};
