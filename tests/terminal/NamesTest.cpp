// Device names and the command line: what the user types, and what the program makes of it.

#include "terminal/CaptureFile.h"
#include "terminal/CommandLine.h"
#include "terminal/Decimal.h"
#include "terminal/DeviceName.h"
#include "terminal/StandardError.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <initializer_list>
#include <vector>

namespace {

TEST(DeviceName, TypedNamesBecomeDevicesAndTitles) {
    const struct {
        const char* typed;
        const char* device;
        BOOL isComPort;
        const char* display;
    } rows[] = {
        {"com9", "COM9:", TRUE, "COM9"},
        {"com12", "\\\\.\\COM12", TRUE, "COM12"},
        {"Compaq Modem", "COM0:", TRUE, "COM0"},
        {"COM 3", "COM3:", TRUE, "COM3"},
        {"COM-5", "COM-5:", FALSE, "COM-5"},
        {"COM99999999999", "\\\\.\\COM2147483647", TRUE, "COM2147483647"},
        {"-B:9600", "-B:9600", FALSE, "-B:9600"},
        {"/dev/COM7:", "/dev/COM7:", TRUE, "/dev/COM7:"},
        {"./my modem", "./my modem", TRUE, "./my modem"},
        {"dev/ttyUSB0", "dev/ttyUSB0", TRUE, "dev/ttyUSB0"},
        {"Serial Port / Data Cable", "Serial Port / Data Cable", FALSE, "Serial Port / Data Cable"},
        {"", "", FALSE, ""},
        {"CO", "CO", FALSE, "CO"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        const std::string device = MakeDeviceName(row.typed);
        EXPECT_EQ(device, row.device);
        EXPECT_EQ(IsComPort(device), row.isComPort);
        EXPECT_EQ(GetPortDisplayName(device), row.display);
    }
}

TEST(StandardError, BreaksLinesBetweenWords) {
    EXPECT_EQ(BreakBetweenWords("one two three", 0), "one two three");
    EXPECT_EQ(BreakBetweenWords("one two three", 7), "one two\nthree");
    EXPECT_EQ(BreakBetweenWords("t\xC3\xA9l\xC3\xA9 d muchlonger e f", 6),
              "t\xC3\xA9l\xC3\xA9 d\nmuchlonger\ne f");
}

TEST(Decimal, FollowsTheLibraryAndStaysInBounds) {
    const std::pair<const char*, int> rows[] = {
        {"", 0},       {"x1", 0},  {" \t+42", 42},           {" ", 0},
        {"-12z", -12}, {"- 1", 0}, {"99999999999", INT_MAX}, {"-99999999999", INT_MIN},
    };
    for (const auto& [text, value] : rows)
        EXPECT_EQ(ParseDecimal(text), value) << text;
}

// "usage", or the port, the baud rate and the files of -A, -O, -S and --check.
std::string Parse(std::initializer_list<const char*> arguments) {
    g_strCommandFile = g_strOutputFile = g_strScriptFile = "";
    std::vector<const char*> words{"wirelet"};
    words.insert(words.end(), arguments);
    const CommandLine line = ParseCommandLine(static_cast<int>(words.size()), words.data());
    return line.wantsUsage
               ? "usage"
               : line.port + "," + std::to_string(line.baudRate) + "," + g_strCommandFile + "," +
                     g_strOutputFile + "," + g_strScriptFile + "," + line.checkedFile;
}

TEST(CommandLine, FilesKeepTheirCaseAndLaterSwitchesWin) {
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(Parse({"COM1", "-b:57600", "/a:Test.dat", "-O:Out.TXT", "-s:run.scr"}),
              "COM1,57600,Test.dat,Out.TXT,run.scr,");
    EXPECT_EQ(Parse({"COM1", "-A:~/x", "-O:~", "-S:a~/x"}), "COM1,0,/home/me/x,~,a~/x,");
    EXPECT_EQ(Parse({"COM1", "-B:1200", "-B:2400"}), "COM1,2400,,,,");
    EXPECT_EQ(Parse({"COM1", "B:9600", "-X:foo", "-B", "-", "", "--B:1", "-?"}), "COM1,0,,,,");
    EXPECT_EQ(Parse({"-B:9600"}), "-B:9600,0,,,,");
    EXPECT_EQ(Parse({"/?", "COM1"}), "usage");
    EXPECT_EQ(Parse({"--check"}), "usage");
    EXPECT_EQ(Parse({"--check", "a.scr", "b.scr"}), "usage");
    EXPECT_EQ(Parse({"--check", "-?"}), "--check,0,,,,-?");
}

TEST(CaptureFile, EveryLineBreakIsCrLf) {
    EXPECT_EQ(ToCaptureText("AT\r\r\nOK\r\n"), "AT\r\n\r\nOK\r\n");
    EXPECT_EQ(ToCaptureText("a\nb"), "ab");
}

} // namespace
