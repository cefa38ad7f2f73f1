// The device is unplugged, whatever the program is doing.
#include "tests/vm/DriverSession.h"

#include <regex>

class CUnplugTest : public CDriverSession {
  protected:
    // What the user is left with.
    void ExpectGone() {
        EXPECT_TRUE(EndsSoon());
        const std::string message = std::string("The device ") + GetParam().device + " is gone";
        EXPECT_TRUE(Fulfils("the message", [&] {
            return m_terminal.GetOutput().find(message) != std::string::npos;
        }));
        EXPECT_TRUE(GivesTerminalBack());
    }

    // What came from the device, out of a log that ends with a whole line.
    std::string TakeLogged() {
        const std::string log = ReadWholeFile(m_log);
        EXPECT_TRUE(log.ends_with(" ]\r\n")) << log;
        static const std::regex line(R"(\[  <== Phone\]  \[([^\]]*)\])");
        std::string bytes;
        for (std::sregex_iterator match(log.begin(), log.end(), line), end; match != end; ++match)
            bytes += (*match)[1];
        bytes = std::regex_replace(bytes, std::regex("<CR>"), "\r");
        return std::regex_replace(bytes, std::regex("<LF>"), "\n");
    }

    // Plugged in again, the device can be used at once under its old name.
    void ExpectBack() {
        Plug(GetParam());
        Connect();
        StartOnCable();
        EXPECT_TRUE(EndsByKey());
    }

    const std::string m_log = m_folder.GetPath("log");
};
INSTANTIATE_TEST_SUITE_P(Cables, CUnplugTest, testing::Values(ADAPTER, ACM), NameOfCable);

TEST_P(CUnplugTest, WhileIdle) {
    StartOnCable({"-O:" + m_log});
    const std::string text = MakeLines(500) + "\x1B[20;1Hlast\x1B[10;5H\x1B[1;31;44mcoloured";
    m_device.Send(text);
    ASSERT_TRUE(Shows("coloured"));
    Unplug(GetParam());
    ExpectGone();
    EXPECT_TRUE(Ends());
    EXPECT_EQ(TakeLogged(), text);
    ExpectBack();
}

TEST_P(CUnplugTest, InMidOutput) {
    StartOnCable({"-O:" + m_log});
    const std::string text = MakeLines(1000000);
    m_device.Send(text);
    ASSERT_TRUE(Fulfils("output", [this] { return m_terminal.GetOutput().size() > 20000; }));
    Unplug(GetParam());
    EXPECT_FALSE(m_device.IsAllSent());
    ExpectGone();
    EXPECT_TRUE(Ends());
    // A piece that has no room is left out; of what comes behind it, a smaller one may have.
    const std::string logged = TakeLogged();
    EXPECT_LE(logged.size(), 10000u);
    EXPECT_GT(logged.size(), 10000u - 256);
    EXPECT_TRUE(text.starts_with(logged.substr(0, 10000 - 255))) << logged;
    ExpectBack();
}

TEST_P(CUnplugTest, DuringAPaste) {
    StartOnCable();
    std::size_t pasted = 0;
    const auto pasteUntil = [&](const std::function<bool()>& condition) {
        return Fulfils("a part of the paste", [&] {
            if (m_terminal.IsAllSent() && pasted < 1 << 20) {
                Type(std::string(4096, 'p'));
                pasted += 4096;
            }
            return condition();
        });
    };
    ASSERT_TRUE(pasteUntil([this] { return m_device.GetReceived().size() > 20000; }));
    Unplug(GetParam());
    const std::size_t pastedBefore = pasted;
    EXPECT_LT(pastedBefore, 1u << 20);
    EXPECT_TRUE(pasteUntil([this] { return m_program->HasEnded(); }));
    // The program does not take the whole paste before it sees what has happened.
    EXPECT_LT(pasted - pastedBefore, 1u << 18);
    ExpectGone();
    // What it did not take of the paste is the shell's, so no other program begins here.
    Plug(GetParam());
}

TEST_P(CUnplugTest, WhileACommandFileWaits) {
    StartCommandFile("AT+CSQ\nATI\n");
    ASSERT_TRUE(DeviceGets("AT+CSQ\r"));
    m_device.Send("\r\n+CSQ: 20,0\r\n\r\nOK\r\n");
    ASSERT_TRUE(DeviceGets("ATI\r"));
    m_device.Send("\r\nhalf of an answ");
    m_pump.RunFor(std::chrono::seconds(1));
    Unplug(GetParam());
    ExpectGone();
    EXPECT_TRUE(Ends());
    EXPECT_EQ(ReadWholeFile(m_capture),
              "AT+CSQ\r\n\r\n+CSQ: 20,0\r\n\r\nOK\r\nATI\r\n\r\nhalf of an answ");
    ExpectBack();
}

TEST_P(CUnplugTest, WhileAScriptWaits) {
    StartScript("SendString(\"ready\\r\")\r\nWaitForString(\"go\", 600000)");
    ASSERT_TRUE(DeviceGets("ready\r"));
    Unplug(GetParam());
    ExpectGone();
    EXPECT_TRUE(Ends());
    ExpectBack();
}
