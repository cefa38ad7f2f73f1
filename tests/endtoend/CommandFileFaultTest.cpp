// Command files and capture files that cannot be used: each is told in a word, and the run ends.
#include "tests/endtoend/SessionTest.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>

class CCommandFileFaultTest : public CSessionTest {
  protected:
    // The run ends without a command sent.
    void ExpectRefusal(const std::string& commands, const std::string& capture,
                       const std::string& message) {
        Start(m_device.GetPath(), {"-A:" + commands, "-O:" + capture});
        ASSERT_TRUE(Shows(message));
        ASSERT_TRUE(Ends());
        EXPECT_EQ(m_device.GetReceived(), "") << message;
    }
};

TEST_F(CCommandFileFaultTest, FilesThatCannotBeOpened) {
    const std::string commands = m_folder.Write("commands", "ATI\n");
    const std::string kept = m_folder.Write("kept", "kept content");
    const std::string missing = m_folder.GetPath("missing");
    const std::string folder = m_folder.GetPath("folder");
    std::filesystem::create_directory(folder);

    ExpectRefusal(missing, kept, "Cannot open " + missing);
    ExpectRefusal(commands, folder, "Cannot create " + folder);
    ExpectRefusal(commands, missing + "/x", "Cannot create " + missing + "/x");

    ExpectRefusal(commands, commands, "Cannot create " + commands);
    EXPECT_EQ(ReadWholeFile(commands), "ATI\n");

    const CDescriptor other(open(kept.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(other.Get(), LOCK_EX), 0);
    ExpectRefusal(commands, kept, "Cannot create " + kept);
    EXPECT_EQ(ReadWholeFile(kept), "kept content");

    // A missing command file is found out before the capture file is made.
    const std::string notMade = m_folder.GetPath("not-made");
    ExpectRefusal(missing, notMade, "Cannot open " + missing);
    EXPECT_FALSE(std::filesystem::exists(notMade));

    if (geteuid() != 0) {
        std::filesystem::permissions(commands, std::filesystem::perms::none);
        ExpectRefusal(commands, notMade, "Cannot open " + commands);
    }
}

TEST_F(CCommandFileFaultTest, FolderInPlaceOfTheCommandFile) {
    const std::string folder = m_folder.GetPath("folder");
    std::filesystem::create_directory(folder);
    Start(m_device.GetPath(), {"-A:" + folder});
    ASSERT_TRUE(Fulfils("a message", [this] {
        return Screen().FindRow("Cannot open ") >= 0 || Screen().FindRow("Cannot read ") >= 0;
    }));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(m_device.GetReceived(), "");
}

TEST_F(CCommandFileFaultTest, FullDisk) {
    Start(m_device.GetPath(), {"-A:" + m_folder.Write("commands", "ATI\nATZ\n"), "-O:/dev/full"});
    // Whether the first line or the end finds the disk full, it is told.
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Shows("Cannot write /dev/full: the disk is full"));
    EXPECT_TRUE(Ends());
}

TEST_F(CCommandFileFaultTest, EmptyFile) {
    const std::string capture = m_folder.Write("capture", "old");
    Start(m_device.GetPath(), {"-A:" + m_folder.Write("commands", ""), "-O:" + capture});
    EXPECT_TRUE(Ends());
    EXPECT_TRUE(std::filesystem::exists(capture));
    EXPECT_EQ(ReadWholeFile(capture), "");
    EXPECT_EQ(m_device.GetReceived(), "");
}

TEST_F(CCommandFileFaultTest, NulBytesAndALongLine) {
    const std::string longLine(1 << 20, 'L');
    std::string commands = "AT";
    commands += '\0';
    commands += "I\n" + longLine + "\nATZ\n";
    Start(m_device.GetPath(),
          {"-A:" + m_folder.Write("commands", commands), "-O:" + m_folder.GetPath("capture")});
    // A command is text: it ends with its CR or before its NUL, and the run goes on either way.
    std::string& received = m_device.GetReceived();
    ASSERT_TRUE(Fulfils("the first line", [&] { return received.starts_with("AT"); }));
    m_pump.RunFor(std::chrono::milliseconds(300));
    received.clear();
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(DeviceGets(longLine + '\r'));
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(DeviceGets("ATZ\r"));
    m_device.Send("\r\nOK\r\n");
    ASSERT_TRUE(Ends());
    EXPECT_NE(ReadWholeFile(m_folder.GetPath("capture")).find(longLine + "\r\n\r\nOK\r\nATZ\r\n"),
              std::string::npos);
}
