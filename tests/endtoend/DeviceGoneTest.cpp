// The device is unplugged, whatever the program is doing: a pseudo-terminal here, real devices in
// tests/vm, which the next test finds plugged in again.
#include "tests/endtoend/SessionTest.h"

class CDeviceGoneTest : public CSessionTest {
  protected:
    // What the user is left with; what is not on the screen any more has been there.
    void ExpectGone() {
        EXPECT_TRUE(EndsWith(0, kSoon));
        const std::string message = "The device " + m_device.GetPath() + " is gone";
        EXPECT_TRUE(Fulfils(message.c_str(), [&] {
            return m_terminal.GetOutput().find(message) != std::string::npos;
        }));
        EXPECT_TRUE(GivesTerminalBack());
    }
    std::string ReadLog() { return Decode(ReadWholeFile(m_capture)); }
};

TEST_F(CDeviceGoneTest, WhileNothingHappens) {
    StartInteractive({"-O:" + m_capture});
    const std::string text = MakeLines(500) + "\x1B[20;1Hlast\x1B[10;5H\x1B[1;31;44mcoloured";
    m_device.Send(text);
    ASSERT_TRUE(Shows("coloured"));
    m_device.Vanish();
    ExpectGone();
    EXPECT_TRUE(Ends());
    EXPECT_TRUE(IsSame(ReadLog(), ">ATE1V1\r<" + text));
}

TEST_F(CDeviceGoneTest, InMidOutput) {
    StartInteractive({"-O:" + m_capture});
    const std::string text = MakeLines(1000000);
    m_device.Send(text);
    ASSERT_TRUE(Fulfils("output", [this] { return m_terminal.GetOutput().size() > 50000; }));
    m_device.Vanish();
    EXPECT_FALSE(m_device.IsAllSent());
    ExpectGone();
    EXPECT_TRUE(Ends());
    // All that was shown is logged, and nothing is left out in between.
    const std::string log = ReadLog();
    EXPECT_GT(log.size(), 20000U);
    EXPECT_TRUE(IsSame(log, (">ATE1V1\r<" + text).substr(0, log.size())));
}

TEST_F(CDeviceGoneTest, InAMenu) {
    StartInteractive();
    Type(kF6);
    EXPECT_TRUE(Shows("Flow Control:"));
    m_device.Vanish();
    ExpectGone();
    EXPECT_TRUE(Ends());
}

TEST_F(CDeviceGoneTest, DuringAPaste) {
    StartInteractive();
    m_device.SetReadLimit(0);
    Type(std::string(1 << 20, 'p'));
    m_pump.RunFor(std::chrono::milliseconds(300));
    m_device.Vanish();
    // What the program did not take is the shell's from now on, so no prompt stands alone.
    ExpectGone();
}

TEST_F(CDeviceGoneTest, WhileACommandFileWaits) {
    StartCommands("ATI\nATZ\nAT+NEVER\n");
    ASSERT_TRUE(DeviceGets("ATI\r"));
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(DeviceGets("ATZ\r"));
    m_device.Send("ATZ\r\r\nhalf an ans");
    // A pseudo-terminal that closes takes with it what was not read yet.
    ASSERT_TRUE(Fulfils("the device to be read", [this] {
        m_pump.RunFor(std::chrono::milliseconds(500));
        return m_device.IsAllSent() && m_device.GetLine().CountUnread() == 0;
    }));
    m_device.Vanish();
    ExpectGone();
    EXPECT_TRUE(Ends());
    EXPECT_GE(Screen().FindRow("half an ans"), 0);
    EXPECT_EQ(Screen().FindRow("AT+NEVER"), -1);
    EXPECT_EQ(ReadWholeFile(m_capture), "ATI\r\n\r\nOK\r\nATZ\r\nATZ\r\n\r\nhalf an ans");
}

TEST_F(CDeviceGoneTest, WhileAScriptWaits) {
    StartScript("SendString(\"ready\\r\")\r\nWaitForString(\"go\", 600000)");
    ASSERT_TRUE(DeviceGets("ready\r"));
    m_device.Vanish();
    ExpectGone();
    EXPECT_TRUE(Ends());
}

TEST_F(CDeviceGoneTest, WhileAScriptsLastBoxIsOpen) {
    StartScript("MessageBox(\"last words\", \"\")");
    ASSERT_TRUE(Shows("last words"));
    m_device.Vanish();
    Type("\r");
    ExpectGone();
}
