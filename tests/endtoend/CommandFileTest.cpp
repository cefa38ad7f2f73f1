// Command files (-A) and their capture (-O), with a device that answers; files that cannot be used.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <filesystem>
#include <sys/file.h>
#include <sys/ioctl.h>

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

TEST_F(CCommandFileTest, DeviceGoneInMidAnswer) {
    StartCommands("ATI\nATZ\nAT+NEVER\n");
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
    StartCommands("ATI\nATZ\n");
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
        StartCommands("ATI\nATZ\n");
        ASSERT_TRUE(DeviceGets("ATI\r"));
        m_program->Kill(SIGQUIT);
        ASSERT_TRUE(GivesTerminalBack());
        m_program->Kill(signal);
        ASSERT_TRUE(EndsWith(-signal));
        EXPECT_EQ(ReadCapture(), "ATI\r\n");
    }
}

// Nothing is sent then, and no file is made or changed.
TEST_F(CCommandFileTest, RefusesFilesThatCannotBeOpened) {
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
    const struct {
        Words files; // -A, -O and -S
        std::string told;
    } rows[] = {
        // A missing command file is found out before the capture file is made.
        {{missing, missing}, "Cannot open " + missing + ": there is no such file"},
        {{folder, missing}, "Cannot open " + folder + ": it is a directory"},
        {{commands, folder}, "Cannot create " + folder + ": it is a directory"},
        {{commands, missing + "/x"}, "Cannot create " + missing + "/x: there is no such folder"},
        {{commands, link}, "Cannot create " + link + ": it is the command file itself"},
        {{commands, kept}, "Cannot create " + kept + ": another program has it open"},
        {{"", folder}, "Cannot create " + folder + ": it is a directory"},
        {{"", script, script}, "Cannot create " + script + ": it is the script file itself"},
        {{commands, link, script}, "Cannot create " + link + ": it is the command file itself"},
        {{"", script, missing}, missing}, // without a script the last log stays
    };
    const auto refuse = [&](const Words& files, const std::string& told) {
        Words arguments = {m_device.GetPath()};
        for (std::size_t file = 0; file < files.size(); ++file)
            if (!files[file].empty())
                arguments.push_back(std::string{'-', "AOS"[file], ':'} + files[file]);
        const Outcome outcome = Run(arguments);
        EXPECT_NE(outcome.error.find(told), std::string::npos) << told << '\n' << outcome.error;
        EXPECT_EQ(outcome.exit, 0) << told;
        EXPECT_EQ(m_device.GetReceived(), "") << told;
    };
    for (const auto& row : rows)
        refuse(row.files, row.told);
    if (geteuid() != 0) {
        fs::permissions(commands, fs::perms::none);
        refuse({commands, missing}, "Cannot open " + commands + ": access is denied");
        fs::permissions(commands, fs::perms::all);
    }
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_EQ(ReadWholeFile(commands) + ReadWholeFile(kept), "ATI\nkept content");
    EXPECT_EQ(ReadWholeFile(script), "FUNCTION main()\r\nENDFUNCTION\r\n");

    Start({"-A:" + folder});
    EXPECT_TRUE(ShowsInRow(2, "Cannot open " + folder));
    EXPECT_TRUE(ShowsInRow(3, "(it is a directory)"));
    EXPECT_TRUE(Ends());
}

TEST_F(CCommandFileTest, FullDisk) {
    Start({"-A:" + m_folder.Write("commands", "ATI\nATZ\n"), "-O:/dev/full"});
    // Whether the first line or the end finds the disk full, it is told.
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Shows("Cannot write /dev/full: the disk is full"));
    EXPECT_TRUE(Ends());
    EXPECT_EQ(m_device.GetReceived(), "") << "nothing is asked whose answer is not kept";
}

TEST_F(CCommandFileTest, NulBytesAndALongLine) {
    const std::string longLine(1 << 20, 'L');
    StartCommands(std::string("AT\0I\n", 5) + longLine + "\nATZ\n");
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
