// What the tests of a session share: a terminal with a user before it, a device, and the program.
#pragma once

#include "tests/endtoend/Device.h"
#include "tests/endtoend/Terminal.h"
#include "tests/support/Collector.h"
#include "tests/support/Process.h"
#include "tests/support/Simulator.h"
#include "tests/support/TempFolder.h"

#include <array>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>

// Keys as xterm sends them.
inline constexpr char kAltF4[] = "\x1B[1;3S";
inline constexpr char kF5[] = "\x1B[15~";
inline constexpr char kF6[] = "\x1B[17~";
inline constexpr char kCtrlBackslash[] = "\x1C";

class CSessionTest : public ::testing::Test {
  protected:
    using Result = ::testing::AssertionResult;
    using Words = std::vector<std::string>;

    // An end that waits for nothing: the graces of the program together are below three seconds,
    // what it would wait for without them is ten at least.
    static constexpr std::chrono::seconds kSoon{8};

    CSessionTest();
    // A program that still runs is ended by its key.
    void TearDown() override;

    // Runs the program with these descriptors; -1 is that of m_streams.
    void StartWith(const Words& arguments, int input = -1, int output = -1, int error = -1);
    // Runs it on the test's device with these options.
    void Start(Words options = {});
    // The same, until the interactive terminal is there.
    void StartInteractive(const Words& options = {});
    // A command file with a capture, and a script with a log whose main function does this.
    void StartCommands(std::string_view commands);
    void StartScript(const std::string& statements);
    // Connects the simulated modem with the device; what the modem gets is the device's to tell.
    void ConnectModem(const Words& options = {});

    // Runs a program, the other one or once more the same, on pipes to its end.
    struct Outcome {
        int exit;
        std::string output;
        std::string error;
    };
    Outcome Run(const Words& arguments, const std::string& input = "\n",
                const std::string& program = WIRELET);

    void Type(std::string_view bytes) { m_terminal.Type(bytes); }
    CScreen& Screen() { return m_terminal.GetScreen(); }

    // Wait until something is so; the failure tells what the screen shows instead.
    Result Shows(std::string_view text);
    Result ShowsInRow(int row, const std::string& text);
    // The device has received exactly these bytes since it was last asked.
    Result DeviceGets(const std::string& bytes);
    Result GivesTerminalBack();
    Result Fulfils(const char* what, const std::function<bool()>& condition,
                   std::chrono::milliseconds patience = CPump::kPatience);

    // Whether these are the bytes; the failure tells where they begin to be others.
    static Result IsSame(const std::string& actual, const std::string& expected);
    // The bytes of a log (-O), with ">" before those that were sent and "<" before the others.
    static std::string Decode(const std::string& log);
    // Numbered lines; and whether as many of them have gone through the screen, in order.
    static std::string MakeLines(int count, std::string_view end = "\r\n");
    void ExpectLines(int count);

    // The program ends with this exit code (or by minus this signal).
    Result EndsWith(int exit, std::chrono::milliseconds patience = CPump::kPatience);
    // The terminal is as it was before, too, and the prompt that a shell would print stands below
    // the text.
    Result Ends(int exit = 0);
    // The end once the device is gone: soon, with a message, which need not be on the screen any
    // more, and with the terminal's settings as before.
    Result EndsAsGone();

    CPump m_pump;
    CTempFolder m_folder;
    const std::string m_capture = m_folder.GetPath("capture");
    CTerminal m_terminal;
    CDevice m_device = MakeDevice();
    std::map<std::string, std::string> m_environment; // of the program
    std::unique_ptr<CProcess> m_program;
    std::array<int, 3> m_streams; // of the program: the terminal
    std::function<void()> m_work; // done in place of the program, if there is something
    // Their settings when the program was started.
    termios m_deviceBefore{};
    termios m_terminalBefore{};

  private:
    ProcessOptions Options(const std::string& program, const Words& arguments) const;
    Result ShowsPrompt();
    Result IsSane();

    std::optional<CSimulator> m_modem;
    std::optional<CDevice> m_modemEnd;
};
