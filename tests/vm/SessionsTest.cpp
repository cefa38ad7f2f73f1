// What only real drivers do in a session of the program. Which cable a test is for is in the name
// of its suite; init leaves out the others.
#include "tests/endtoend/SessionTest.h"
#include "tests/vm/Cable.h"

#include <regex>

using CChipSession = CSessionTest;

TEST_F(CChipSession, HangupDropsTheLinesForATenthOfASecond) {
    const std::string request = std::string("moves ") + SessionCable().name;
    AskHost(request);
    StartScript("Hangup()");
    ASSERT_TRUE(EndsWith(0, kSoon));
    const std::string moves = AskHost(request);
    const std::regex pattern("-DTR \\d+ms -RTS (\\d+)ms \\+DTR \\d+ms \\+RTS ");
    std::smatch match;
    ASSERT_TRUE(std::regex_search(moves, match, pattern)) << moves;
    // Two clocks: the program's and the emulator's.
    EXPECT_GE(std::stoi(match[1]), 95);
}

using CAdapterSession = CSessionTest;

// The guest has no udev: what a modem is called, it says itself.
TEST_F(CAdapterSession, FromTheListToTheModemOrToOneThatIsGone) {
    ConnectModem();
    const auto tells = [this](const char* what) {
        const std::regex pattern(what);
        return Fulfils(what, [&] { return std::regex_search(m_terminal.GetOutput(), pattern); });
    };
    const auto list = [&] {
        m_terminal.GetReceived().clear();
        StartWith({});
        return tells("Ports:\r\n 1\\) QEMU USB SERIAL\r\n 2\\) Linux .*Gadget Serial.*\r\n"
                     " 3\\) COM2\r\n 4\\) /dev/ttyACM0\r\n 5\\) /dev/ttyUSB0\r\nEnter .*: $");
    };
    ASSERT_TRUE(list());
    Type("1\r");
    ASSERT_TRUE(Shows("OK"));
    Type("AT+CGMI\r");
    EXPECT_TRUE(Shows("Wirelet"));
    Type(kAltF4);
    EXPECT_TRUE(EndsWith(0, kSoon));
    for (const auto& [number, message] :
         {std::pair("1\r", "\"QEMU USB SERIAL\", /dev/ttyUSB0: no such device"),
          std::pair("5\r", "/dev/ttyUSB0: no such device")}) {
        ASSERT_TRUE(list());
        m_device.Vanish();
        EXPECT_TRUE(Fulfils("the end of it", [] { return access(kAdapter.device, F_OK) != 0; }));
        Type(number);
        EXPECT_TRUE(tells(message));
        Type("\r");
        EXPECT_TRUE(EndsWith(0, kSoon));
        Plug(kAdapter);
    }
}
