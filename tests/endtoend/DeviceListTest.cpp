// Modems by name and the list of devices, on a machine made up for the test.
#include "tests/endtoend/SessionTest.h"
#include "tests/support/DeviceNamespace.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>

namespace fs = std::filesystem;

class CDeviceListTest : public CSessionTest {
  protected:
    void SetUp() override {
        if (const std::string& problem = CDeviceNamespace::Enter(); !problem.empty())
            GTEST_SKIP() << problem;
        CDeviceNamespace::SetInterfaces({});
        SetVariable("XDG_CONFIG_HOME", m_folder.GetPath(""));
        // As in this process: the machine's description is none of the kernel's.
        SetVariable("SYSTEMD_DEVICE_VERIFY_SYSFS", "0");
        fs::create_directory(m_folder.GetPath("wirelet"));
    }

    void NameModems(const std::string& lines) { m_folder.Write("wirelet/modems.conf", lines); }

    static FakeInterface OnBoard(const std::string& name) {
        FakeInterface port;
        port.name = name;
        port.node = name;
        return port;
    }

    // Runs a program on pipes to its end.
    struct Outcome {
        int exit;
        std::string output;
        std::string error;
    };
    Outcome Run(const std::string& program, const std::vector<std::string>& arguments,
                const std::string& input) {
        CCollector output;
        CCollector error;
        ProcessOptions options;
        options.arguments = {program};
        options.environment = m_environment;
        options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
        const CDescriptor file(open(m_folder.Write("input", input).c_str(), O_RDONLY | O_CLOEXEC));
        options.input = file.Get();
        options.output = output.GetWriter();
        options.error = error.GetWriter();
        CProcess process(options);
        output.CloseWriter();
        error.CloseWriter();
        CPump pump;
        for (IPollable* part :
             std::initializer_list<IPollable*>{&process, &output, &error, &m_device})
            pump.Add(*part);
        EXPECT_TRUE(pump.RunUntil(
            [&] { return process.HasEnded() && output.HasEnded() && error.HasEnded(); }));
        return {process.GetExit(), output.GetText(), error.GetText()};
    }
};

TEST_F(CDeviceListTest, FromTheListToTheModemAndBackAgain) {
    CSimulator simulator(m_pump);
    FakeInterface adapter;
    adapter.name = "ttyUSB0";
    adapter.node = m_device.GetPath().substr(sizeof "/dev");
    adapter.hardware = "1-2";
    adapter.properties = {{"ID_VENDOR_FROM_DATABASE", "Acme"},
                          {"ID_MODEL_FROM_DATABASE", "Rocket"}};
    CDeviceNamespace::SetInterfaces({OnBoard("ttyS2"), adapter});
    NameModems("# mine\nDesk phone = " + simulator.GetPath() + "\n");

    StartWith(-1, -1, -1, {});
    EXPECT_TRUE(Shows("Enter a device number, or X to exit:"));
    EXPECT_TRUE(ShowsInRow(1, "Installed Modem or Ports:"));
    EXPECT_TRUE(ShowsInRow(2, " 1) Desk phone"));
    EXPECT_TRUE(ShowsInRow(3, " 2) Acme Rocket"));
    EXPECT_TRUE(ShowsInRow(4, " 3) COM3"));
    EXPECT_TRUE(ShowsInRow(5, " 4) /dev/ttyUSB0"));
    Type("5\r");
    EXPECT_TRUE(Shows("Invalid selection."));
    Type(" 1st\r");
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        EXPECT_TRUE(Shows("OK"));
        EXPECT_EQ(Screen().GetTitle(), "Corvane - Desk phone");
        Type("ATI\r");
        EXPECT_TRUE(Shows("Simulated GSM modem"));
        Type(kAltF4);
        EXPECT_TRUE(EndsWith(0));
        if (round == 0)
            Start("Desk phone");
    }
    Start("Acme Rocket");
    EXPECT_TRUE(DeviceGets("ATE1V1\r"));
    m_device.Send("from the modem");
    EXPECT_TRUE(Shows("from the modem"));
    m_device.Vanish();
    EXPECT_TRUE(EndsWith(0));
    EXPECT_TRUE(Shows("Acme Rocket"));
}

TEST_F(CDeviceListTest, AnswersAndTheirExitCodes) {
    const std::string tooLong = "1" + std::string(127, ' ') + "\n";
    const Outcome usage = Run(WIRELET, {"-?"}, "");
    EXPECT_EQ(usage.exit, 1);
    EXPECT_TRUE(usage.output.starts_with("Corvane v2.2\n")) << usage.output;
    EXPECT_NE(usage.output.find("Usage:"), std::string::npos);
    const Outcome none = Run(WIRELET, {}, "1\n");
    EXPECT_EQ(none.exit, 2);
    EXPECT_EQ(none.output, "Corvane v2.2\nNo modems or ports found\n");
    EXPECT_EQ(none.error, "");

    NameModems("One = " + m_device.GetPath() + "\n");
    for (const std::string& answers :
         {std::string("x\n"), std::string("0\nabc\n-1\nXyz\n"), std::string(), std::string("\n2"),
          tooLong + "x" + tooLong + "X"}) {
        const Outcome outcome = Run(WIRELET, {}, answers);
        EXPECT_EQ(outcome.exit, 0) << answers;
        EXPECT_EQ(outcome.output.find("Press"), std::string::npos) << outcome.output;
        if (answers.starts_with(tooLong)) {
            EXPECT_EQ(outcome.output.find("Invalid selection.\n"),
                      outcome.output.find("exit: ") + 6);
        }
    }
    // What follows the answer is the session's.
    EXPECT_EQ(Run(WIRELET, {}, "1\nAT+X\r").exit, 0);
    EXPECT_TRUE(DeviceGets("ATE1V1\rAT+X\r"));
}

TEST_F(CDeviceListTest, DevicesThatDoNotOpenAreExplained) {
    CDeviceNamespace::SetInterfaces({OnBoard("null")});
    NameModems("Gone = " + m_folder.GetPath("gone") +
               "\nFile = /dev/zero\nUsed = " + m_device.GetPath() + "\n");
    const std::string noSuchName =
        ": no modem has this name; there are \"Gone\", \"File\", \"Used\"; ";
    const std::string file = m_folder.Write("file", "content");
    const std::string longName = '/' + std::string(5000, 'n');
    const std::pair<std::string, std::string> rows[] = {
        {"Gone", "\"Gone\", " + m_folder.GetPath("gone") + ": no such device\n"},
        {"File", "\"File\", /dev/zero: is no serial device\n"},
        {"gone", "\"gone\"" + noSuchName +
                     "a serial device is named by its full path, such as /dev/ttyUSB0\n"},
        {"null",
         "\"null\"" + noSuchName + "the serial device of that name is opened as /dev/null\n"},
        {"-x\x1B[2J", "\"-x?[2J\": no port and no modem; wirelet -? tells the usage\n"},
        {"/dev/missing-device", "/dev/missing-device: no such device\n"},
        {"/dev/null", "/dev/null: is no serial device\n"},
        {"/tmp", "/tmp: is a directory, not a serial device\n"},
        {file, file + ": is no serial device\n"},
        {longName, longName + ": no such device\n"},
        {"/dev/\x1B]2;title\a", "/dev/?]2;title?: no such device\n"},
    };
    for (const auto& [name, error] : rows) {
        const Outcome outcome = Run(WIRELET, {name}, "\n");
        EXPECT_EQ(outcome.error, "wirelet: " + error);
        EXPECT_TRUE(outcome.output.ends_with("\"\nPress Enter to exit.")) << outcome.output;
        EXPECT_EQ(outcome.exit, 0);
    }
    EXPECT_EQ(ReadWholeFile(file), "content");
    Start("Used");
    EXPECT_TRUE(DeviceGets("ATE1V1\r"));
    EXPECT_EQ(Run(WIRELET, {"Used"}, "\n").error,
              "wirelet: \"Used\", " + m_device.GetPath() + ": in use by process " +
                  std::to_string(m_program->GetId()) +
                  " (wirelet); end it, or choose another device\n");
}

// The library stands beside the program in a build, and in ../lib/wirelet once installed.
TEST_F(CDeviceListTest, TheLibraryIsFoundOrMissed) {
    const fs::path library = fs::path(WIRELET).parent_path() / "libtapi32.so";
    fs::create_directories(m_folder.GetPath("bin"));
    const std::string program = m_folder.GetPath("bin/wirelet");
    fs::copy_file(WIRELET, program);
    const Outcome alone = Run(program, {}, "x\n");
    EXPECT_EQ(alone.exit, 1);
    EXPECT_EQ(alone.output, "Corvane v2.2\nCannot Initialize TAPI\n");
    EXPECT_NE(Run(program, {"Modem"}, "\n").error.find("cannot be loaded"), std::string::npos);

    fs::create_directories(m_folder.GetPath("lib/wirelet"));
    fs::copy_file(library, m_folder.GetPath("lib/wirelet/libtapi32.so"));
    EXPECT_EQ(Run(program, {}, "x\n").exit, 2);
    EXPECT_EQ(Run(WIRELET, {}, "x\n").exit, 2);
    // Started so, the system names another program: the one that loads programs.
    EXPECT_EQ(Run("/lib64/ld-linux-x86-64.so.2", {WIRELET}, "x\n").exit, 2);
}

TEST_F(CDeviceListTest, WhatIsWrongInTheNamesFileIsToldWhereNamesAreMissed) {
    const std::string path = m_folder.GetPath("/wirelet/modems.conf") + ":";
    const std::string lines = "wirelet: " + path + "2: there is no '=' between name and device\n" +
                              "wirelet: " + path + "3: the device is no path from the root\n";
    NameModems("Good = " + m_device.GetPath() + "\nBad /dev/x\nHome = ~/x\n");
    EXPECT_EQ(Run(WIRELET, {}, "x\n").error, lines);
    EXPECT_TRUE(
        Run(WIRELET, {"Bad"}, "\n").error.starts_with(lines + "wirelet: \"Bad\": no modem has"));
    EXPECT_EQ(Run(WIRELET, {"Good"}, "").error, "");

    NameModems("\xFF\xFE" + std::string(2000, '\n'));
    EXPECT_EQ(Run(WIRELET, {}, "x\n").error,
              "wirelet: " + path + "1: the file is UTF-16; save it as UTF-8\n");
    std::string many;
    for (int line = 0; line < 2000; ++line)
        many += "x\n";
    NameModems(many);
    const std::string error = Run(WIRELET, {}, "x\n").error;
    EXPECT_EQ(std::ranges::count(error, '\n'), 9) << error;
}
