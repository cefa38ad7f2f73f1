// What the tests of a session share: a terminal with a user before it, a device, and the program.
#pragma once

#include "tests/endtoend/Device.h"
#include "tests/endtoend/Terminal.h"
#include "tests/support/Collector.h"
#include "tests/support/Process.h"
#include "tests/support/Simulator.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <memory>

// Keys as xterm sends them.
inline constexpr char kAltF4[] = "\x1B[1;3S";
inline constexpr char kF5[] = "\x1B[15~";
inline constexpr char kF6[] = "\x1B[17~";
inline constexpr char kCtrlBackslash[] = "\x1C";

class CSessionTest : public ::testing::Test {
  protected:
    using Result = ::testing::AssertionResult;

    CSessionTest();
    // A program that still runs is ended by its key.
    void TearDown() override;

    // Runs the program on the terminal: a device and what else the command line holds.
    void Start(const std::string& device, const std::vector<std::string>& options = {});
    // Runs it on the test's device and waits until the interactive terminal is there.
    void StartInteractive();
    // Runs it with these descriptors instead of the terminal's; -1 is the terminal.
    void StartWith(int input, int output, int error, const std::vector<std::string>& arguments);
    // Puts NAME=value in the program's environment, in place of what was there.
    void SetVariable(const std::string& name, const std::string& value);

    void Type(std::string_view bytes) { m_terminal.Type(bytes); }
    CScreen& Screen() { return m_terminal.GetScreen(); }

    // Wait until something is so; the failure tells what the screen shows instead.
    Result Shows(std::string_view text);
    Result ShowsInRow(int row, const std::string& text);
    // The device has received exactly these bytes since it was last asked.
    Result DeviceGets(const std::string& bytes);
    Result GivesTerminalBack();
    Result Fulfils(const char* what, const std::function<bool()>& condition);

    // Numbered lines; and whether as many of them have gone through the screen, in order.
    static std::string MakeLines(int count, std::string_view end = "\r\n");
    void ExpectLines(int count);

    // The program ends with this exit code (or by minus this signal).
    Result EndsWith(int exit);
    // The terminal is as it was before, too, and the prompt that a shell would print stands below
    // the text.
    Result Ends(int exit = 0);

    CPump m_pump;
    CTempFolder m_folder;
    CTerminal m_terminal;
    CDevice m_device;
    std::vector<std::string> m_environment;
    std::unique_ptr<CProcess> m_program;
    termios m_deviceBefore{}; // its settings when the program was started

  private:
    Result ShowsPrompt();
    Result IsSane();

    termios m_terminalBefore{};
};
