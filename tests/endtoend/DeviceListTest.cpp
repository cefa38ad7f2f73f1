// Modems by name and the list of devices, on a machine made up for the test.
#include "tests/endtoend/SessionTest.h"
#include "tests/support/DeviceNamespace.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

class CDeviceListTest : public CSessionTest {
  protected:
    void SetUp() override {
        if (const std::string& problem = CDeviceNamespace::Enter(); !problem.empty())
            GTEST_SKIP() << problem;
        CDeviceNamespace::SetInterfaces({});
        m_environment["XDG_CONFIG_HOME"] = m_folder.GetPath("");
        // As in this process: the machine's description is none of the kernel's.
        m_environment["SYSTEMD_DEVICE_VERIFY_SYSFS"] = "0";
        fs::create_directory(m_folder.GetPath("wirelet"));
    }

    void NameModems(const std::string& lines) { m_folder.Write("wirelet/modems.conf", lines); }
};

TEST_F(CDeviceListTest, FromTheListToTheModemAndBackAgain) {
    CSimulator simulator(m_pump);
    CDeviceNamespace::SetInterfaces({{.name = "ttyS2", .node = "ttyS2"},
                                     {.name = "ttyUSB0",
                                      .node = m_device.GetPath().substr(sizeof "/dev"),
                                      .hardware = "1-2",
                                      .properties = {{"ID_VENDOR_FROM_DATABASE", "Acme"},
                                                     {"ID_MODEL_FROM_DATABASE", "Rocket"}}}});
    NameModems("# mine\nDesk phone = " + simulator.GetPath() + "\n");

    StartWith({});
    EXPECT_TRUE(Shows("Enter a device number, or X to exit:"));
    int row = 1;
    for (const char* line : {"Installed Modem or Ports:", " 1) Desk phone", " 2) Acme Rocket",
                             " 3) COM3", " 4) /dev/ttyUSB0"})
        EXPECT_TRUE(ShowsInRow(row++, line));
    Type("5\r");
    EXPECT_TRUE(Shows("Invalid selection."));
    Type(" 1st\r");
    for (const bool isAgain : {false, true}) {
        if (isAgain)
            StartWith({"Desk phone"});
        EXPECT_TRUE(Shows("OK"));
        EXPECT_EQ(Screen().GetTitle(), "Corvane - Desk phone");
        Type("ATI\r");
        EXPECT_TRUE(Shows("Simulated GSM modem"));
        Type(kAltF4);
        EXPECT_TRUE(EndsWith(0));
    }
    StartWith({"Acme Rocket"});
    EXPECT_TRUE(DeviceGets("ATE1V1\r"));
    m_device.Send("from the modem");
    EXPECT_TRUE(Shows("from the modem"));
    m_device.Vanish();
    EXPECT_TRUE(EndsWith(0));
    EXPECT_TRUE(Shows("Acme Rocket"));
}

TEST_F(CDeviceListTest, AnswersAndTheirExitCodes) {
    const Outcome usage = Run({"-?"});
    EXPECT_EQ(usage.exit, 1);
    EXPECT_TRUE(usage.output.starts_with("Corvane v2.2\n")) << usage.output;
    EXPECT_NE(usage.output.find("Usage:"), std::string::npos);
    const Outcome none = Run({}, "1\n");
    EXPECT_EQ(none.exit, 2);
    EXPECT_EQ(none.output, "Corvane v2.2\nNo modems or ports found\n");
    EXPECT_EQ(none.error, "");

    NameModems("One = " + m_device.GetPath() + "\n");
    const std::string menu = "Installed Modem or Ports:\n 1) One\n"
                             "Enter a device number, or X to exit: ";
    const std::string tooLong = "1" + std::string(127, ' ') + "\n";
    // What is typed, how much of it is refused, and what is shown when it just ends.
    const std::tuple<std::string, int, const char*> rows[] = {
        {"x\n", 0, ""},   {"0\nabc\n-1\nXyz\n", 3, ""},           {"", 0, "\n"},
        {"\n2", 2, "\n"}, {tooLong + "x" + tooLong + "X", 2, ""},
    };
    for (const auto& [answers, refused, ending] : rows) {
        std::string expected = "Corvane v2.2\n" + menu;
        for (int count = 0; count < refused; ++count)
            expected += "Invalid selection.\n" + menu;
        const Outcome outcome = Run({}, answers);
        EXPECT_EQ(outcome.exit, 0) << answers;
        EXPECT_EQ(outcome.output, expected + ending) << answers;
    }
    // What follows the answer is the session's.
    EXPECT_EQ(Run({}, "1\nAT+X\r").exit, 0);
    EXPECT_TRUE(DeviceGets("ATE1V1\rAT+X\r"));
}

// One row for each place that knows the reason.
TEST_F(CDeviceListTest, DevicesThatDoNotOpenAreExplained) {
    CDeviceNamespace::SetInterfaces({{.name = "null", .node = "null"}});
    NameModems("Gone = " + m_folder.GetPath("gone") + "\nFile = /dev/zero\n");
    const std::string noSuchName = ": no modem has this name; there are \"Gone\", \"File\"; ";
    const std::string longName = '/' + std::string(5000, 'n');
    const std::pair<std::string, std::string> rows[] = {
        {longName, longName + ": no such device\n"},
        {"File", "\"File\", /dev/zero: is no serial device\n"},
        {"gone", "\"gone\"" + noSuchName +
                     "a serial device is named by its full path, such as /dev/ttyUSB0\n"},
        {"null",
         "\"null\"" + noSuchName + "the serial device of that name is opened as /dev/null\n"},
        {"-x\x1B[2J", "\"-x?[2J\": no port and no modem; wirelet -? tells the usage\n"},
    };
    for (const auto& [name, error] : rows) {
        const Outcome outcome = Run({name});
        EXPECT_EQ(outcome.error, "wirelet: " + error);
        EXPECT_TRUE(outcome.output.ends_with("\"\nPress Enter to exit.")) << outcome.output;
        EXPECT_EQ(outcome.exit, 0);
    }
}

// The library stands beside the program in a build, and in ../lib/wirelet once installed.
TEST_F(CDeviceListTest, TheLibraryIsFoundOrMissed) {
    const fs::path library = fs::path(WIRELET).parent_path() / "libtapi32.so";
    fs::create_directories(m_folder.GetPath("bin"));
    const std::string program = m_folder.GetPath("bin/wirelet");
    fs::copy_file(WIRELET, program);
    const Outcome alone = Run({}, "x\n", program);
    EXPECT_EQ(alone.exit, 1);
    EXPECT_EQ(alone.output, "Corvane v2.2\nCannot Initialize TAPI\n");
    EXPECT_NE(Run({"Modem"}, "\n", program).error.find("cannot be loaded"), std::string::npos);

    fs::create_directories(m_folder.GetPath("lib/wirelet"));
    fs::copy_file(library, m_folder.GetPath("lib/wirelet/libtapi32.so"));
    EXPECT_EQ(Run({}, "x\n", program).exit, 2);
    EXPECT_EQ(Run({}, "x\n").exit, 2);
    // Started so, the system names another program: the one that loads programs.
    EXPECT_EQ(Run({WIRELET}, "x\n", "/lib64/ld-linux-x86-64.so.2").exit, 2);
}

TEST_F(CDeviceListTest, WhatIsWrongInTheNamesFileIsToldWhereNamesAreMissed) {
    const std::string path = m_folder.GetPath("/wirelet/modems.conf") + ":";
    const std::string lines = "wirelet: " + path + "2: there is no '=' between name and device\n" +
                              "wirelet: " + path + "3: the device is no path from the root\n";
    NameModems("Good = " + m_device.GetPath() + "\nBad /dev/x\nHome = ~/x\n");
    EXPECT_EQ(Run({}, "x\n").error, lines);
    EXPECT_TRUE(Run({"Bad"}).error.starts_with(lines + "wirelet: \"Bad\": no modem has"));
    EXPECT_EQ(Run({"Good"}, "").error, "");

    NameModems("\xFF\xFE" + std::string(2000, '\n'));
    EXPECT_EQ(Run({}, "x\n").error,
              "wirelet: " + path + "1: the file is UTF-16; save it as UTF-8\n");
    NameModems(MakeLines(2000));
    const std::string error = Run({}, "x\n").error;
    EXPECT_EQ(std::ranges::count(error, '\n'), 9) << error;
}
