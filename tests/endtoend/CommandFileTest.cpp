// Command files (-A) and their capture (-O), with a device that answers.
#include "tests/endtoend/SessionTest.h"

#include <csignal>

class CCommandFileTest : public CSessionTest {
  protected:
    void StartRun(std::string_view commands) {
        const std::string file = m_folder.Write("commands", commands);
        Start(m_device.GetPath(), {"-A:" + file, "-O:" + m_folder.GetPath("capture")});
    }
    std::string ReadCapture() { return ReadWholeFile(m_folder.GetPath("capture")); }

    // The device gets a command and answers.
    Result Answers(const std::string& command, const std::string& answer) {
        const Result received = DeviceGets(command);
        if (received)
            m_device.Send(answer);
        return received;
    }
};

TEST_F(CCommandFileTest, SendsLineByLineAndCaptures) {
    StartRun("ATI\r\n\r\n\n; comment\nATZ\r\r\n;\nAT+X\n\tspaced \nAT+LAST");
    ASSERT_TRUE(Answers("ATI\r", "ATI\r\r\nModem\nModel\r\n\r\nOK\r\n"));
    ASSERT_TRUE(Answers("ATZ\r\r", "ATZ\r\x1B[2J\x1B]2;stolen\x07\r\nOK\r\n"));
    // An error is an answer: the command is not repeated.
    ASSERT_TRUE(Answers("AT+X\r", "\r\nERROR\r\n"));
    ASSERT_TRUE(Answers("\tspaced \r", "in pieces\r\nOK\r"));
    m_pump.RunFor(std::chrono::milliseconds(100));
    m_device.Send("\n");
    ASSERT_TRUE(Answers("AT+LAST\r", "\r\nOK\r\n"));
    ASSERT_TRUE(Ends());

    EXPECT_EQ(ReadCapture(), "ATI\r\nATI\r\n\r\nModemModel\r\n\r\nOK\r\n"
                             "ATZ\r\n\r\nATZ\r\n\x1B[2J\x1B]2;stolen\x07\r\nOK\r\n"
                             "AT+X\r\n\r\nERROR\r\n"
                             "\tspaced \r\nin pieces\r\nOK\r\n"
                             "AT+LAST\r\n\r\nOK\r\n");
    // The start is still there, so the answer's sequence did not clear the screen.
    const std::string text = Screen().GetText();
    EXPECT_NE(text.find("Setting 19200 baud\nATI\nATI\nModem\nModel\n\nOK\nATZ"), std::string::npos)
        << text;
    EXPECT_NE(text.find("\u2190[2J\u2190]2;stolen"), std::string::npos) << text;
    EXPECT_EQ(Screen().GetTitle(), "Corvane - " + m_device.GetPath());
    EXPECT_EQ(m_device.GetReceived(), "");
}

TEST_F(CCommandFileTest, TalksToTheSimulatedModem) {
    CSimulator modem(m_pump, {"--split"});
    const std::string file = m_folder.Write("commands", "ATE1V1\nAT+CGMI\nAT+NONSENSE\n");
    Start(modem.GetPath(), {"-a:" + file, "-O:" + m_folder.GetPath("capture"), "-B:115200"});
    ASSERT_TRUE(Ends());
    const std::string capture = ReadCapture();
    EXPECT_TRUE(capture.starts_with("ATE1V1\r\n")) << capture;
    EXPECT_NE(capture.find("AT+CGMI\r\nAT+CGMI\r\n\r\n"), std::string::npos) << capture;
    EXPECT_TRUE(capture.ends_with("\r\nERROR\r\n")) << capture;
    EXPECT_EQ(Screen().FindRow("No Response"), -1);
}

TEST_F(CCommandFileTest, DeviceGoneInMidAnswer) {
    StartRun("ATI\nATZ\nAT+NEVER\n");
    ASSERT_TRUE(Answers("ATI\r", "\r\nOK\r\n"));
    ASSERT_TRUE(Answers("ATZ\r", "ATZ\r\r\nhalf an ans"));
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.IsAllSent(); }));
    // A pseudo-terminal that closes takes with it what was not read yet.
    m_pump.RunFor(std::chrono::seconds(1));
    m_device.Vanish();
    ASSERT_TRUE(Shows("The device " + m_device.GetPath() + " is gone"));
    EXPECT_GE(Screen().FindRow("half an ans"), 0);
    EXPECT_EQ(Screen().FindRow("AT+NEVER"), -1);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadCapture(), "ATI\r\n\r\nOK\r\nATZ\r\nATZ\r\n\r\nhalf an ans");
}

TEST_F(CCommandFileTest, GivesTheTerminalBackAndRunsOn) {
    const termios before = m_terminal.GetLine().GetSettings();
    StartRun("ATI\nATZ\n");
    ASSERT_TRUE(DeviceGets("ATI\r"));
    Type(kCtrlBackslash);
    ASSERT_TRUE(Fulfils("the terminal given back",
                        [&] { return m_terminal.GetLine().GetSettings() == before; }));
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Answers("ATZ\r", "\r\nunseen\r\n\r\nOK\r\n"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadCapture(), "ATI\r\n\r\nOK\r\nATZ\r\n\r\nunseen\r\n\r\nOK\r\n");
    EXPECT_EQ(Screen().FindRow("unseen"), -1);
}

TEST_F(CCommandFileTest, EndsOnTheSecondSignal) {
    for (const int signal : {SIGQUIT, SIGTERM, SIGHUP, SIGINT}) {
        const termios before = m_terminal.GetLine().GetSettings();
        StartRun("ATI\nATZ\n");
        ASSERT_TRUE(DeviceGets("ATI\r"));
        m_program->Kill(SIGQUIT);
        ASSERT_TRUE(Fulfils("the terminal given back",
                            [&] { return m_terminal.GetLine().GetSettings() == before; }));
        m_program->Kill(signal);
        ASSERT_TRUE(Fulfils("the end", [this] { return m_program->HasEnded(); }));
        EXPECT_EQ(m_program->GetExit(), -signal);
        EXPECT_EQ(ReadCapture(), "ATI\r\n");
    }
}
