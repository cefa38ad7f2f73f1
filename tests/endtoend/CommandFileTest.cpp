// Command files (-A) and their capture (-O), with a device that answers; files that cannot be used.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <filesystem>
#include <sys/file.h>

namespace fs = std::filesystem;

class CCommandFileTest : public CSessionTest {
  protected:
    std::string ReadCapture() { return ReadWholeFile(m_capture); }

    // The device gets a command and answers.
    Result Answers(const std::string& command, const std::string& answer) {
        const Result received = DeviceGets(command);
        if (received)
            m_device.Send(answer);
        return received;
    }
};

TEST_F(CCommandFileTest, SendsLineByLineAndCaptures) {
    StartCommands("ATI\r\n\r\n\n; comment\nATZ\r\r\n;\nAT+X\n\tspaced \nAT+LAST");
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

    // Nothing to send: the old capture goes all the same.
    StartCommands("");
    EXPECT_TRUE(Ends());
    EXPECT_TRUE(fs::exists(m_capture));
    EXPECT_EQ(ReadCapture(), "");
    EXPECT_EQ(m_device.GetReceived(), "");
}

TEST_F(CCommandFileTest, GivesTheTerminalBackAndRunsOnToTheSecondSignal) {
    StartCommands("ATI\nATZ\n");
    ASSERT_TRUE(DeviceGets("ATI\r"));
    Type(std::string("a shell's command\r") + kCtrlBackslash);
    ASSERT_TRUE(Shows("wirelet: the run goes on without the screen; Ctrl+C ends it"));
    EXPECT_EQ(m_terminal.GetLine().CountUnread(), 0);
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Answers("ATZ\r", "\r\nunseen\r\n\r\nOK\r\n"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadCapture(), "ATI\r\n\r\nOK\r\nATZ\r\n\r\nunseen\r\n\r\nOK\r\n");
    EXPECT_EQ(Screen().FindRow("unseen"), -1);

    for (const int signal : {SIGQUIT, SIGTERM, SIGHUP, SIGINT}) {
        StartCommands("ATI\nATZ\n");
        ASSERT_TRUE(DeviceGets("ATI\r"));
        m_program->Kill(SIGQUIT);
        ASSERT_TRUE(GivesTerminalBack());
        m_program->Kill(signal);
        ASSERT_TRUE(EndsWith(-signal));
        EXPECT_EQ(ReadCapture(), "ATI\r\n");
    }
}

// Nothing is sent then: no answer is asked for that is not kept. No file is made or changed.
TEST_F(CCommandFileTest, RefusesFilesThatCannotBeUsed) {
    const std::string script = m_folder.Write("script", "FUNCTION main()\r\nENDFUNCTION\r\n");
    const std::string commands = m_folder.Write("commands", "ATI\n");
    const std::string kept = m_folder.Write("kept", "kept content");
    const std::string missing = m_folder.GetPath("missing");
    const std::string folder = m_folder.GetPath("folder");
    const std::string link = m_folder.GetPath("link");
    fs::create_directory(folder);
    fs::create_symlink(commands, link);
    const CDescriptor other(open(kept.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(other.Get(), LOCK_EX), 0);
    std::vector<std::pair<Words, std::string>> rows = {
        // A missing command file is found out before the capture file is made.
        {{"-A:" + missing, "-O:" + missing}, "open " + missing + ": there is no such file"},
        {{"-A:" + folder, "-O:" + missing}, "open " + folder + ": it is a directory"},
        {{"-A:" + commands, "-O:" + folder}, "create " + folder + ": it is a directory"},
        {{"-A:" + commands, "-O:" + missing + "/x"},
         "create " + missing + "/x: there is no such folder"},
        {{"-A:" + commands, "-O:" + link}, "create " + link + ": it is the command file itself"},
        {{"-A:" + commands, "-O:" + kept}, "create " + kept + ": another program has it open"},
        {{"-O:" + folder}, "create " + folder + ": it is a directory"},
        {{"-O:" + script, "-S:" + script}, "create " + script + ": it is the script file itself"},
        {{"-O:" + link, "-A:" + commands, "-S:" + script},
         "create " + link + ": it is the command file itself"},
        {{"-A:" + commands, "-O:/dev/full"}, "write /dev/full: the disk is full"},
        {{"-O:" + script, "-S:" + missing}, missing}, // without a script the last log stays
    };
    const std::string secret = m_folder.Write("secret", "ATI\n");
    fs::permissions(secret, fs::perms::none);
    if (geteuid() != 0)
        rows.push_back({{"-A:" + secret}, "open " + secret + ": access is denied"});
    for (auto& [options, told] : rows) {
        options.insert(options.begin(), m_device.GetPath());
        const Outcome outcome = Run(options);
        EXPECT_NE(outcome.error.find(told), std::string::npos) << told << '\n' << outcome.error;
        EXPECT_EQ(outcome.exit, 0) << told;
        EXPECT_EQ(m_device.GetReceived(), "") << told;
    }
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_EQ(ReadWholeFile(commands) + ReadWholeFile(kept), "ATI\nkept content");
    EXPECT_EQ(ReadWholeFile(script), "FUNCTION main()\r\nENDFUNCTION\r\n");

    Start({"-A:" + folder});
    EXPECT_TRUE(ShowsInRow(2, "Cannot open " + folder));
    EXPECT_TRUE(ShowsInRow(3, "(it is a directory)"));
    EXPECT_TRUE(Ends());
}
