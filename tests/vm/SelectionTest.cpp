// A device from the list, as the user of an installed program has it. The guest has no udev: what
// a modem is called, it says itself.
#include "tests/vm/DriverSession.h"

#include <regex>

class CSelectionTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CSelectionTest, testing::Values(ADAPTER), NameOfCable);

TEST_P(CSelectionTest, ToTheModemOrToOneThatIsGone) {
    ConnectModem();
    const auto tells = [this](const char* what) {
        const std::regex pattern(what);
        return Fulfils(what, [&] { return std::regex_search(m_terminal.GetOutput(), pattern); });
    };
    const auto list = [&] {
        m_terminal.GetReceived().clear();
        StartWith(-1, -1, -1, {});
        return tells("Ports:\r\n 1\\) QEMU USB SERIAL\r\n 2\\) Linux .*Gadget Serial.*\r\n"
                     " 3\\) COM2\r\n 4\\) /dev/ttyACM0\r\n 5\\) /dev/ttyUSB0\r\nEnter .*: $");
    };
    ASSERT_TRUE(list());
    Type("1\r");
    ASSERT_TRUE(Shows("OK"));
    Type("AT+CGMI\r");
    EXPECT_TRUE(Shows("Wirelet"));
    Type(kAltF4);
    EXPECT_TRUE(EndsSoon());
    EXPECT_TRUE(Ends());

    for (const auto& [number, message] :
         {std::pair("1\r", "\"QEMU USB SERIAL\", /dev/ttyUSB0: no such device"),
          std::pair("5\r", "/dev/ttyUSB0: no such device")}) {
        ASSERT_TRUE(list());
        Unplug(GetParam());
        EXPECT_TRUE(Fulfils("the end of it", [] { return access(ADAPTER.device, F_OK) != 0; }));
        Type(number);
        EXPECT_TRUE(tells(message));
        Type("\r");
        EXPECT_TRUE(EndsSoon());
        Plug(GetParam());
    }
}
