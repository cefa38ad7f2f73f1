// How a session starts, or does not, and its menus.
#include "tests/endtoend/SessionTest.h"

using CSessionStartTest = CSessionTest;

TEST_F(CSessionStartTest, WhatDoesNotOpenIsToldUntilEnter) {
    const std::string own = m_terminal.GetLine().GetPath();
    const std::string isOwn = ": is the terminal you are sitting at; choose";
    const std::pair<std::string, std::string> rows[] = {
        {own, "wirelet: " + own + isOwn},
        {"/dev/tty", "wirelet: /dev/tty" + isOwn},
        {"/dev/\x1B]2;title\a", "Cannot open device \"/dev/?]2;title?\""},
    };
    for (const auto& [path, message] : rows) {
        StartWith({path});
        ASSERT_TRUE(Shows(message));
        ASSERT_TRUE(Shows("Press Enter to exit."));
        EXPECT_FALSE(m_program->HasEnded());
        Type("\r");
        EXPECT_TRUE(Ends());
        EXPECT_EQ(Screen().GetTitle(), "");
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
    m_device.Send("said before\r\n");
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.IsAllSent(); }));
    StartInteractive({"-B:-5"});
    ASSERT_TRUE(ShowsInRow(1, "Error setting -5 baud"));
    ASSERT_TRUE(ShowsInRow(2, "said before"));
    int line = 3;
    for (const auto& row : rows) {
        Type(row.key);
        ASSERT_TRUE(ShowsInRow(line++, row.menu));
        Type(row.choice);
        ASSERT_TRUE(ShowsInRow(line++, row.message));
    }
    // Nothing of it all went to the device, and after hardware flow control it still gets keys. It
    // does not echo, and the terminal shows nothing of its own.
    Type("AT\r");
    EXPECT_TRUE(DeviceGets("AT\r"));
    m_device.Send("answer");
    ASSERT_TRUE(ShowsInRow(line, "answer"));
}

TEST_F(CSessionStartTest, AMenuLeavesTheDevicesBytesForLater) {
    StartInteractive();
    Type(kF5);
    ASSERT_TRUE(Shows("other key = cancel"));
    m_device.Send("held back");
    // Special keys work inside the menu; the answer to one shows that the program has been through.
    Type("\x1B[A");
    ASSERT_TRUE(DeviceGets("\x1B[A"));
    Type(std::string(kF6) + "1");
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
