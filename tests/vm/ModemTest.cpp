// The program's sessions on real drivers, against the simulated modem and against itself.
#include "tests/vm/DriverSession.h"
#include "tests/vm/Host.h"

#include <regex>

class CModemTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CModemTest, testing::Values(ADAPTER, UART, ACM), NameOfCable);

TEST_P(CModemTest, InteractiveSession) {
    ConnectModem({"--dial-time", "10"});
    StartOnCable({"-B:115200"});
    ASSERT_TRUE(Shows("OK"));
    Type("AT+CSQ\r");
    ASSERT_TRUE(Shows("+CSQ: "));
    Type("ATD5551\r");
    ASSERT_TRUE(Shows("CONNECT"));
    Type("over the line and back");
    ASSERT_TRUE(Shows("over the line and back"));
    Type(kAltF4);
    EXPECT_TRUE(EndsSoon());
    EXPECT_TRUE(Ends());
}

TEST_P(CModemTest, CommandFile) {
    ConnectModem();
    const std::string capture = m_folder.GetPath("capture");
    Start(GetParam().device,
          {"-A:" + m_folder.Write("commands", "ATE0\nAT+CGMI\nAT+NONE\n"), "-O:" + capture});
    ASSERT_TRUE(EndsSoon());
    EXPECT_EQ(ReadWholeFile(capture),
              "ATE0\r\nATE0\r\n\r\nOK\r\nAT+CGMI\r\n\r\nWirelet\r\n\r\nOK\r\n"
              "AT+NONE\r\n\r\nERROR\r\n");
}

TEST_P(CModemTest, Script) {
    ConnectModem();
    Start(GetParam().device,
          {"-S:" + m_folder.Write("script", "FUNCTION main()\r\n"
                                            "MessageBox(SendCommandGetString(\"AT+CGMI\\r\"), "
                                            "\"The maker\")\r\n"
                                            "ENDFUNCTION\r\n")});
    ASSERT_TRUE(Shows("The maker"));
    EXPECT_GE(Screen().FindRow("Wirelet"), 0) << Screen().GetText();
    Type("\r");
    EXPECT_TRUE(EndsSoon());
}

TEST_P(CModemTest, ASecondProgramIsRefused) {
    StartOnCable();
    CCollector errors;
    ProcessOptions options;
    options.arguments = {WIRELET, GetParam().device};
    options.error = errors.GetWriter();
    CProcess second(options);
    errors.CloseWriter();
    m_pump.Add(errors);
    m_pump.Add(second);
    EXPECT_TRUE(Fulfils("the refusal", [&] { return second.HasEnded() && errors.HasEnded(); }));
    EXPECT_EQ(errors.GetText(), std::string(GetParam().device) + ": in use by process " +
                                    std::to_string(m_program->GetId()) +
                                    " (wirelet). End it, or choose another device.\n");
    // The first one has not noticed.
    m_farEnd->Send("still here");
    EXPECT_TRUE(Shows("still here"));
    m_pump.Remove(errors);
    m_pump.Remove(second);
}

class CChipTest : public CDriverSession {
  protected:
    std::string Ask(const char* what) { return AskHost(std::string(what) + ' ' + GetParam().name); }
};
INSTANTIATE_TEST_SUITE_P(Cables, CChipTest, testing::Values(ADAPTER, UART), NameOfCable);

TEST_P(CChipTest, ASpeedThatTheDriverReplacesIsTold) {
    const std::string before = Ask("settings").substr(0, 8);
    StartOnCable({"-B:4000000"});
    EXPECT_TRUE(Shows("Error setting 4000000 baud"));
    EXPECT_EQ(Ask("settings").substr(0, 8), before);
    Type(kF5);
    ASSERT_TRUE(Shows("Baud Rate: "));
    Type("1");
    EXPECT_TRUE(Shows("Setting 19200 baud"));
    EXPECT_EQ(Ask("settings"), "19200 8N1 - DTR RTS");
}

TEST_P(CChipTest, HangupDropsTheLinesForATenthOfASecond) {
    Ask("moves");
    Start(GetParam().device, {"-S:" + m_folder.Write("script", "FUNCTION main()\r\n"
                                                               "Hangup()\r\n"
                                                               "ENDFUNCTION\r\n")});
    ASSERT_TRUE(EndsSoon());
    const std::string moves = Ask("moves");
    const std::regex pattern("-DTR \\d+ms -RTS (\\d+)ms \\+DTR \\d+ms \\+RTS ");
    std::smatch match;
    ASSERT_TRUE(std::regex_search(moves, match, pattern)) << moves;
    // Two clocks: the program's and the emulator's.
    EXPECT_GE(std::stoi(match[1]), 95);
}

class CMegabyteTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CMegabyteTest, testing::Values(ADAPTER, ACM), NameOfCable);

TEST_P(CMegabyteTest, ArrivesWholeEachWayAtOnce) {
    constexpr int LINES = 45000;
    const std::string text = MakeLines(LINES, " of a long text\r\n");
    ASSERT_GT(text.size(), 1u << 20);
    const CDescriptor input(open(m_folder.Write("input", text).c_str(), O_RDONLY | O_CLOEXEC));
    const std::string path = m_folder.GetPath("output");
    const CDescriptor output(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    StartWith(input.Get(), output.Get(), -1, {GetParam().device});
    std::string& received = m_farEnd->GetReceived();
    // What comes before the port has left the kernel's line mode, the kernel echoes.
    ASSERT_TRUE(Fulfils("the start", [&] { return !received.empty(); }));
    m_farEnd->Send(text);
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_program->HasEnded(); }, GUARD * 50));
    EXPECT_TRUE(received == "ATE1V1\r" + text) << received.size();
    const std::string shown = ReadWholeFile(path);
    EXPECT_TRUE(shown.ends_with(MakeLines(LINES, " of a long text\n"))) << shown.size();
}
