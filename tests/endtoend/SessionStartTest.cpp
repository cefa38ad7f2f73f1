// A whole session as a user has it: what is on the screen before, during and after; its menus.
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
    Start(modem.GetPath(), {"-b:115200"});
    ASSERT_TRUE(ShowsInRow(0, "Press Alt+F4 to exit.  Press F5 to change baud rate, F6 to change "
                              "flow control."));
    ASSERT_TRUE(ShowsInRow(1, "Setting 115200 baud"));
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

TEST_F(CSessionStartTest, SetsTheBaudRateAskedForOnABareDevice) {
    m_device.Send("said before\r\n");
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.IsAllSent(); }));
    Start(m_device.GetPath(), {"-B:-5"});
    ASSERT_TRUE(ShowsInRow(1, "Error setting -5 baud"));
    ASSERT_TRUE(ShowsInRow(2, "said before"));
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    // It does not echo, and the terminal shows nothing of its own.
    Type("AT\r");
    ASSERT_TRUE(DeviceGets("AT\r"));
    m_device.Send("answer");
    ASSERT_TRUE(ShowsInRow(3, "answer"));
}

TEST_F(CSessionStartTest, ADeviceThatIsNoneIsToldUntilEnter) {
    Start("/dev/\x1B]2;title\a");
    ASSERT_TRUE(Fulfils("the message", [this] {
        return Screen().GetText().ends_with("/dev/?]2;title?\"\nPress Enter to exit.");
    }));
    EXPECT_FALSE(m_program->HasEnded());
    Type("\r");
    EXPECT_TRUE(Ends());
    EXPECT_EQ(Screen().GetTitle(), "");
}

TEST_F(CSessionStartTest, TheUsersOwnTerminalIsNoDevice) {
    const std::string own = m_terminal.GetLine().GetPath();
    for (const std::string& path : {own, std::string("/dev/tty")}) {
        Start(path);
        ASSERT_TRUE(Shows("wirelet: " + path + ": is the terminal you are sitting at; choose"));
        ASSERT_TRUE(Shows("Press Enter to exit."));
        Type("\r");
        EXPECT_TRUE(Ends());
    }
}

TEST_F(CSessionStartTest, MenusSetWhatTheUserPicks) {
    const char* const f5 =
        "Baud Rate:  1 = 19200, 2 = 57600, 3 = 115200, 4 = 230400, other key = cancel";
    const char* const f6 = "Flow Control:  1 = None, 2 = Hardware (RTS/CTS), other key = cancel";
    const struct {
        const char* key;
        const char* menu;
        const char* choice;
        const char* message;
    } rows[] = {
        {kF5, f5, "1", "Setting 19200 baud"},
        {kF5, f5, "2", "Setting 57600 baud"},
        {kF5, f5, "3", "Setting 115200 baud"},
        {kF5, f5, "4", "Setting 230400 baud"},
        {kF5, f5, "x", "Canceled"},
        {kF6, f6, "2", "Flow Control Set to Hardware"},
        {kF6, f6, "1", "Flow Control Set to None"},
        {kF6, f6, "\r", "Canceled"},
    };
    StartInteractive();
    int line = 2;
    for (const auto& row : rows) {
        Type(row.key);
        ASSERT_TRUE(ShowsInRow(line++, row.menu));
        Type(row.choice);
        ASSERT_TRUE(ShowsInRow(line++, row.message));
    }
    // Nothing of it all went to the device, and after hardware flow control it still gets keys.
    Type("AT\r");
    EXPECT_TRUE(DeviceGets("AT\r"));
}

TEST_F(CSessionStartTest, AMenuLeavesTheDevicesBytesForLater) {
    StartInteractive();
    Type(kF5);
    ASSERT_TRUE(Shows("other key = cancel"));
    m_device.Send("held back");
    // Special keys work inside the menu; the answer to one shows that the program has been through.
    Type("\x1B[A");
    ASSERT_TRUE(DeviceGets("\x1B[A"));
    Type(kF6);
    ASSERT_TRUE(Shows("Flow Control:"));
    EXPECT_EQ(Screen().FindRow("held back"), -1);
    Type("1");
    ASSERT_TRUE(ShowsInRow(4, "Flow Control Set to None"));
    EXPECT_EQ(Screen().FindRow("held back"), -1);
    Type("3");
    ASSERT_TRUE(ShowsInRow(5, "Setting 115200 baud"));
    ASSERT_TRUE(ShowsInRow(6, "held back"));

    // A paste opens only so many menus inside each other: these answers lead out of all of them.
    std::string paste;
    for (int key = 0; key < 20; ++key)
        paste += kF5;
    Type(paste + std::string(16, 'x') + "AT\r");
    EXPECT_TRUE(DeviceGets("AT\r"));
    m_device.Send("\x1B[2Jcleared");
    ASSERT_TRUE(Shows("cleared"));

    // The end inside a menu leaves no message behind.
    Type(std::string(kF5) + kAltF4);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Screen().FindRow("Canceled"), -1);
}
