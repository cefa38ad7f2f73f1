// Whole sessions that are the same on every device: on a pseudo-terminal here, and on real drivers
// in tests/vm.
#include "tests/endtoend/SessionTest.h"

#include <algorithm>

using CAnyDeviceTest = CSessionTest;

TEST_F(CAnyDeviceTest, ShowsTheSessionAndLeavesTheTerminalAsItWas) {
    // Settings that nobody has by default must come back too.
    termios settings = m_terminal.GetLine().GetSettings();
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHOCTL);
    settings.c_iflag |= IXANY;
    settings.c_cc[VERASE] = 8;
    m_terminal.GetLine().ApplySettings(settings);
    const std::string earlier = "\x1B]2;shell\x07"
                                "earlier 1\r\nearlier 2\r\n$ ";
    static_cast<void>(!write(m_terminal.GetLine().GetSlave(), earlier.data(), earlier.size()));
    ASSERT_TRUE(Shows("earlier 2"));

    ConnectModem({"--dial-time", "10"});
    Start({"-b:115200"});
    ASSERT_TRUE(ShowsInRow(0, "Press Alt+F4 to exit.  Press F5 to change baud rate, F6 to change "
                              "flow control."));
    ASSERT_TRUE(ShowsInRow(1, "Setting 115200 baud"));
    ASSERT_TRUE(ShowsInRow(2, "ATE1V1"));
    ASSERT_TRUE(Shows("OK"));
    EXPECT_EQ(Screen().GetTitle(), "Corvane - " + m_device.GetPath());
    // The shell's text is above, once, in order, and the banner behind it.
    const Words kept = {"earlier 1", "earlier 2", "$ Corvane v2.2"};
    const Words& scrollback = Screen().GetScrollback();
    ASSERT_GE(scrollback.size(), kept.size());
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), scrollback.begin()));

    Type("ATI\r");
    ASSERT_TRUE(Shows("Wirelet"));
    Type("ATD5551\r");
    ASSERT_TRUE(Shows("CONNECT"));
    Type("over the line and back");
    ASSERT_TRUE(Shows("over the line and back"));
    Type(kAltF4);
    ASSERT_TRUE(EndsWith(0, kSoon));
    ASSERT_TRUE(Ends());
    // The title is put on the terminal's stack and taken off it again.
    EXPECT_EQ(Screen().GetOddities(), (Words{"CSI t", "CSI t"}));
    EXPECT_GE(Screen().FindRow("ATI"), 0);
}

TEST_F(CAnyDeviceTest, ASecondProgramIsRefused) {
    StartInteractive();
    const Outcome second = Run({m_device.GetPath()});
    EXPECT_EQ(second.error, "wirelet: " + m_device.GetPath() + ": in use by process " +
                                std::to_string(m_program->GetId()) +
                                " (wirelet); end it, or choose another device\n");
    EXPECT_TRUE(second.output.ends_with("\"\nPress Enter to exit.")) << second.output;
    EXPECT_EQ(second.exit, 0);
    m_device.Send("the first one has not noticed");
    EXPECT_TRUE(Shows("the first one has not noticed"));
}

TEST_F(CAnyDeviceTest, APasteArrivesWholeAndSoDoesItsEcho) {
    constexpr int kLines = 40000;
    const std::string paste = MakeLines(kLines) + "\x03the end";
    StartInteractive();
    m_device.SetEcho(true);
    Type(paste);
    ASSERT_TRUE(DeviceGets(paste));
    ASSERT_TRUE(Shows("\u2665the end"));
    ExpectLines(kLines);
}

TEST_F(CAnyDeviceTest, TheEndDoesNotWaitForADeviceThatTakesNothing) {
    StartInteractive();
    m_device.SetReadLimit(0);
    Type(std::string(200000, 't'));
    EXPECT_TRUE(Fulfils("the keys", [this] { return m_terminal.IsAllSent(); }));
    m_pump.RunFor(std::chrono::milliseconds(300));
    Type(kAltF4);
    EXPECT_TRUE(EndsWith(0, kSoon));
    EXPECT_TRUE(Ends());
    // A gadget whose terminal closes full has nothing for who opens it next.
    m_device.SetReadLimit(65536);
    m_pump.RunFor(std::chrono::milliseconds(500));
}
