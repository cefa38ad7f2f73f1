// The menus of F5 and F6.
#include "tests/endtoend/SessionTest.h"

using CMenuTest = CSessionTest;

TEST_F(CMenuTest, SetWhatTheUserPicks) {
    const std::string baudMenu =
        "Baud Rate:  1 = 19200, 2 = 57600, 3 = 115200, 4 = 230400, other key = cancel";
    const std::string flowMenu =
        "Flow Control:  1 = None, 2 = Hardware (RTS/CTS), other key = cancel";
    const struct {
        const char* key;
        const std::string& menu;
        const char* choice;
        const char* message;
    } rows[] = {
        {kF5, baudMenu, "1", "Setting 19200 baud"},
        {kF5, baudMenu, "2", "Setting 57600 baud"},
        {kF5, baudMenu, "3", "Setting 115200 baud"},
        {kF5, baudMenu, "4", "Setting 230400 baud"},
        {kF5, baudMenu, "x", "Canceled"},
        {kF6, flowMenu, "2", "Flow Control Set to Hardware"},
        {kF6, flowMenu, "1", "Flow Control Set to None"},
        {kF6, flowMenu, "\r", "Canceled"},
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

TEST_F(CMenuTest, LeavesTheDevicesBytesForLater) {
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

    // The end inside a menu leaves no message behind.
    Type(std::string(kF5) + kAltF4);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Screen().FindRow("Canceled"), -1);
}
