// Command files (-A) and their capture (-O), with a device that answers; files that cannot be used.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <filesystem>
#include <sys/file.h>
#include <sys/ioctl.h>

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

    // The run ends without a command sent.
    void ExpectRefusal(const std::string& commands, const std::string& capture,
                       const std::string& message, const std::string& reason) {
        Start(m_device.GetPath(), {"-A:" + commands, "-O:" + capture});
        ASSERT_TRUE(Shows(message));
        ASSERT_TRUE(Shows("(" + reason + ")"));
        ASSERT_TRUE(Ends());
        EXPECT_EQ(m_device.GetReceived(), "") << message;
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

    // Nothing to send: the old capture goes all the same.
    StartRun("");
    EXPECT_TRUE(Ends());
    EXPECT_TRUE(std::filesystem::exists(m_folder.GetPath("capture")));
    EXPECT_EQ(ReadCapture(), "");
    EXPECT_EQ(m_device.GetReceived(), "");
}

TEST_F(CCommandFileTest, DeviceGoneInMidAnswer) {
    StartRun("ATI\nATZ\nAT+NEVER\n");
    ASSERT_TRUE(Answers("ATI\r", "\r\nOK\r\n"));
    ASSERT_TRUE(Answers("ATZ\r", "ATZ\r\r\nhalf an ans"));
    // A pseudo-terminal that closes takes with it what was not read yet.
    ASSERT_TRUE(Fulfils("the device to be read", [this] {
        m_pump.RunFor(std::chrono::milliseconds(200));
        int unread = -1;
        ioctl(m_device.GetLine().GetSlave(), FIONREAD, &unread);
        return m_device.IsAllSent() && unread == 0;
    }));
    m_device.Vanish();
    ASSERT_TRUE(Shows("The device " + m_device.GetPath() + " is gone"));
    EXPECT_GE(Screen().FindRow("half an ans"), 0);
    EXPECT_EQ(Screen().FindRow("AT+NEVER"), -1);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadCapture(), "ATI\r\n\r\nOK\r\nATZ\r\nATZ\r\n\r\nhalf an ans");
}

TEST_F(CCommandFileTest, GivesTheTerminalBackAndRunsOnToTheSecondSignal) {
    StartRun("ATI\nATZ\n");
    ASSERT_TRUE(DeviceGets("ATI\r"));
    Type(std::string("a shell's command\r") + kCtrlBackslash);
    ASSERT_TRUE(Shows("wirelet: the run goes on without the screen; Ctrl+C ends it"));
    int unread = -1;
    ioctl(m_terminal.GetLine().GetSlave(), FIONREAD, &unread);
    EXPECT_EQ(unread, 0);
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Answers("ATZ\r", "\r\nunseen\r\n\r\nOK\r\n"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadCapture(), "ATI\r\n\r\nOK\r\nATZ\r\n\r\nunseen\r\n\r\nOK\r\n");
    EXPECT_EQ(Screen().FindRow("unseen"), -1);

    for (const int signal : {SIGQUIT, SIGTERM, SIGHUP, SIGINT}) {
        StartRun("ATI\nATZ\n");
        ASSERT_TRUE(DeviceGets("ATI\r"));
        m_program->Kill(SIGQUIT);
        ASSERT_TRUE(GivesTerminalBack());
        m_program->Kill(signal);
        ASSERT_TRUE(EndsWith(-signal));
        EXPECT_EQ(ReadCapture(), "ATI\r\n");
    }
}

TEST_F(CCommandFileTest, RefusesFilesThatCannotBeOpened) {
    const std::string commands = m_folder.Write("commands", "ATI\n");
    const std::string kept = m_folder.Write("kept", "kept content");
    const std::string missing = m_folder.GetPath("missing");
    const std::string folder = m_folder.GetPath("folder");
    const std::string link = m_folder.GetPath("link");
    std::filesystem::create_directory(folder);
    std::filesystem::create_symlink(commands, link);

    // A missing command file is found out before the capture file is made.
    ExpectRefusal(missing, missing, "Cannot open " + missing, "there is no such file");
    EXPECT_FALSE(std::filesystem::exists(missing));
    ExpectRefusal(folder, kept, "Cannot open " + folder, "it is a directory");
    ExpectRefusal(commands, folder, "Cannot create " + folder, "it is a directory");
    ExpectRefusal(commands, missing + "/x", "Cannot create " + missing + "/x",
                  "there is no such folder");
    ExpectRefusal(commands, link, "Cannot create " + link, "it is the command file itself");
    EXPECT_EQ(ReadWholeFile(commands), "ATI\n");

    const CDescriptor other(open(kept.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(other.Get(), LOCK_EX), 0);
    ExpectRefusal(commands, kept, "Cannot create " + kept, "another program has it open");
    EXPECT_EQ(ReadWholeFile(kept), "kept content");
    if (geteuid() != 0) {
        std::filesystem::permissions(commands, std::filesystem::perms::none);
        ExpectRefusal(commands, missing, "Cannot open " + commands, "access is denied");
    }
}

TEST_F(CCommandFileTest, FullDisk) {
    Start(m_device.GetPath(), {"-A:" + m_folder.Write("commands", "ATI\nATZ\n"), "-O:/dev/full"});
    // Whether the first line or the end finds the disk full, it is told.
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Shows("Cannot write /dev/full: the disk is full"));
    EXPECT_TRUE(Ends());
    EXPECT_EQ(m_device.GetReceived(), "") << "nothing is asked whose answer is not kept";
}

TEST_F(CCommandFileTest, NulBytesAndALongLine) {
    const std::string longLine(1 << 20, 'L');
    StartRun(std::string("AT\0I\n", 5) + longLine + "\nATZ\n");
    // A command is text: it ends with its CR or before its NUL, and the run goes on either way.
    std::string& received = m_device.GetReceived();
    ASSERT_TRUE(Fulfils("the first line", [&] { return received.starts_with("AT"); }));
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Fulfils("the long line", [&] { return received.ends_with(longLine + '\r'); }));
    EXPECT_LE(received.find('L'), 5U);
    received.clear();
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Answers("ATZ\r", "\r\nOK\r\n"));
    ASSERT_TRUE(Ends());
    EXPECT_NE(ReadCapture().find(longLine + "\r\n\r\nOK\r\nATZ\r\n"), std::string::npos);
}
