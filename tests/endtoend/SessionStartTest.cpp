// A whole session as a user has it: what is on the screen before, during and after.
#include "tests/endtoend/SessionTest.h"

#include <algorithm>

using CSessionStartTest = CSessionTest;

TEST_F(CSessionStartTest, ShowsTheSessionAndLeavesTheTerminalAsItWas) {
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

    CSimulator modem(m_pump);
    Start(modem.GetPath());
    ASSERT_TRUE(ShowsInRow(0, "Press Alt+F4 to exit.  Press F5 to change baud rate, F6 to change "
                              "flow control."));
    ASSERT_TRUE(ShowsInRow(1, "Setting 19200 baud"));
    ASSERT_TRUE(ShowsInRow(2, "ATE1V1"));
    ASSERT_TRUE(Shows("OK"));
    EXPECT_EQ(Screen().GetTitle(), "Corvane - " + modem.GetPath());

    // The shell's text is above, once, in order, and the banner behind it.
    const std::vector<std::string> kept = {"earlier 1", "earlier 2", "$ Corvane v2.2"};
    const std::vector<std::string>& scrollback = Screen().GetScrollback();
    ASSERT_GE(scrollback.size(), kept.size());
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), scrollback.begin()));

    Type("ATI\r");
    ASSERT_TRUE(Shows("Wirelet"));
    Type("AT+CGMI\r");
    ASSERT_TRUE(Shows("AT+CGMI"));
    Type(kAltF4);
    ASSERT_TRUE(Ends());
    // The title is put on the terminal's stack and taken off it again.
    EXPECT_EQ(Screen().GetOddities(), (std::vector<std::string>{"CSI t", "CSI t"}));
    EXPECT_GE(Screen().FindRow("ATI"), 0);
}

TEST_F(CSessionStartTest, SetsTheBaudRateAskedFor) {
    m_device.Send("said before\r\n");
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.IsAllSent(); }));
    Start(m_device.GetPath(), {"-b:115200"});
    ASSERT_TRUE(ShowsInRow(1, "Setting 115200 baud"));
    ASSERT_TRUE(ShowsInRow(2, "said before"));
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    // A bare device does not echo, and the terminal shows nothing of its own.
    Type("AT\r");
    ASSERT_TRUE(DeviceGets("AT\r"));
    m_device.Send("answer");
    ASSERT_TRUE(ShowsInRow(3, "answer"));
    Type(kAltF4);
    ASSERT_TRUE(Ends());

    Start(m_device.GetPath(), {"-B:-5"});
    ASSERT_TRUE(ShowsInRow(1, "Error setting -5 baud"));
}
