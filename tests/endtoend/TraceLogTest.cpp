// The log of a session (-O): decoded, it is what the device itself has sent and got.
#include "tests/endtoend/SessionTest.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <sys/stat.h>

namespace {

// The bytes of one direction, up to the next one of the other.
struct Block {
    bool sent = false;
    std::string bytes;
    friend bool operator==(const Block&, const Block&) = default;
};

std::ostream& operator<<(std::ostream& stream, const Block& block) {
    return stream << (block.sent ? "sent " : "received ")
                  << ::testing::PrintToString(block.bytes.substr(0, 400));
}

std::string DecodeHexadecimal(std::string_view line) {
    std::string bytes;
    for (std::size_t at = line.rfind('[') + 1; at + 3 < line.size(); at += 3)
        bytes += static_cast<char>(std::stoi(std::string(line.substr(at, 2)), nullptr, 16));
    return bytes;
}

// The log's blocks, from the hexadecimal column. A line that is cut short fails.
std::vector<Block> Decode(std::string_view log) {
    std::vector<Block> blocks;
    while (!log.empty()) {
        const std::size_t end = log.find("\r\n");
        const std::string_view line = log.substr(0, end);
        const bool sent = line.starts_with("[PC ==>     ]  [");
        if (end == std::string_view::npos || !line.ends_with(" ]") ||
            (!sent && !line.starts_with("[  <== Phone]  ["))) {
            ADD_FAILURE() << "no line of a log: " << line;
            break;
        }
        if (blocks.empty() || blocks.back().sent != sent)
            blocks.push_back({sent, ""});
        blocks.back().bytes += DecodeHexadecimal(line);
        log.remove_prefix(end + 2);
    }
    return blocks;
}

} // namespace

class CTraceLogTest : public CSessionTest {
  protected:
    void StartLogged(const std::string& file, const std::vector<std::string>& more = {}) {
        std::vector<std::string> options = {"-O:" + file};
        options.insert(options.end(), more.begin(), more.end());
        Start(m_device.GetPath(), options);
        ASSERT_TRUE(Shows("Setting 19200 baud"));
    }
    // The device's own record of what it gets and sends.
    void Gets(const std::string& bytes) {
        ASSERT_TRUE(DeviceGets(bytes));
        m_record.push_back({true, bytes});
    }
    // With a mark behind it, which shows when all of it has come.
    void Sends(const std::string& bytes) {
        const std::string mark = "mark" + std::to_string(++m_nMark);
        m_device.Send(bytes + "\r\n" + mark);
        ASSERT_TRUE(Shows(mark));
        m_record.push_back({false, bytes + "\r\n" + mark});
    }
    void ExpectRecordInLog() {
        EXPECT_EQ(Decode(ReadWholeFile(m_log)), m_record);
        m_record.clear();
    }

    const std::string m_log = m_folder.GetPath("log");
    std::vector<Block> m_record;

  private:
    int m_nMark = 0;
};

TEST_F(CTraceLogTest, HoldsTheWholeSession) {
    m_folder.Write("log", std::string(100000, 'o'));
    std::string everyByte;
    for (int value = 0; value < 256; ++value)
        everyByte += static_cast<char>(value == 0x1B ? 0 : value);
    for (const int signal : {0, SIGTERM, SIGHUP}) {
        StartLogged(m_log);
        Gets("ATE1V1\r");
        Sends("ATE1V1\r\r\nOK %s%n\r\n");
        Type("AT+CGMI\r");
        Gets("AT+CGMI\r");
        Sends(everyByte + MakeLines(900));
        const std::string keys = "100%s\x1B[A\x01" + MakeLines(5000, "\r");
        Type(keys);
        Gets(keys);
        Sends("[ ] [41 42 ]\r\n");
        if (signal == 0)
            Type(kAltF4);
        else
            m_program->Kill(signal);
        ASSERT_TRUE(Ends());
        ExpectRecordInLog();
    }
}

TEST_F(CTraceLogTest, HoldsAScriptsSession) {
    const std::string script = m_folder.Write(
        "script", "\xEF\xBB\xBF"
                  "FUNCTION main()\r\n  STRING a$\r\n"
                  "  a$ = SendCommandGetString(\"ATI\\r\")\r\n"
                  "  WaitForString(\"last words\", 30000)\r\n  SendFile(\"" +
                      m_folder.Write("lines", MakeLines(2000)) + "\")\r\nENDFUNCTION\r\n");
    // The script is not the command file's, so neither is the log.
    StartLogged(m_log, {"-S:" + script, "-A:" + script});
    ASSERT_TRUE(DeviceGets("ATI\r"));
    const std::string answer = "ATI\r\r\nModem\r\n\r\nOK\r\n" + MakeLines(2000) + "last words";
    m_device.Send(answer);
    // What the slow device has not got when the script ends reaches it all the same.
    m_device.SetReadLimit(20);
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(DeviceGets(MakeLines(2000)));
    m_record = {{true, "ATI\r"}, {false, answer}, {true, MakeLines(2000)}};
    ExpectRecordInLog();
}

TEST_F(CTraceLogTest, IsInTheFileWithoutAnEnd) {
    StartLogged(m_log);
    Gets("ATE1V1\r");
    Sends("received");
    Type("typed");
    Gets("typed");
    // Nothing more is sent, and still all that comes gets there, more than is kept for a send.
    Sends(MakeLines(2000));
    ASSERT_TRUE(Fulfils("the log", [&] {
        const std::string log = ReadWholeFile(m_log);
        return log.ends_with(" ]\r\n") && Decode(log) == m_record;
    }));
    m_program->Kill(SIGKILL);
    ASSERT_TRUE(EndsWith(-SIGKILL));
    ExpectRecordInLog();
}

TEST_F(CTraceLogTest, TellsAFileThatCannotBeCreated) {
    const std::string folder = m_folder.GetPath("folder");
    std::filesystem::create_directory(folder);
    for (const std::string& file : {folder, m_folder.GetPath("missing") + "/log"}) {
        Start(m_device.GetPath(), {"-O:" + file});
        ASSERT_TRUE(Shows("Cannot create " + file));
        ASSERT_TRUE(Ends());
        EXPECT_EQ(m_device.GetReceived(), "");
    }
    // The script is no place for its log, and without a script the last log stays.
    const std::string script = m_folder.Write("script", "FUNCTION main()\r\nENDFUNCTION\r\n");
    Start(m_device.GetPath(), {"-S:" + script, "-O:" + script});
    ASSERT_TRUE(Shows("Cannot create " + script));
    ASSERT_TRUE(Shows("(it is the script file itself)"));
    ASSERT_TRUE(Ends());
    const std::string commands = m_folder.Write("commands", "AT\n");
    Start(m_device.GetPath(), {"-S:" + script, "-A:" + commands, "-O:" + commands});
    ASSERT_TRUE(Shows("(it is the command file itself)"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadWholeFile(commands), "AT\n");
    Start(m_device.GetPath(), {"-S:" + script + "s", "-O:" + script});
    ASSERT_TRUE(Shows("OK"));
    Type(" ");
    ASSERT_TRUE(EndsWith(0));
    EXPECT_EQ(ReadWholeFile(script), "FUNCTION main()\r\nENDFUNCTION\r\n");
}

TEST_F(CTraceLogTest, TellsAFullDiskOnceAndGoesOn) {
    const std::string message = "Cannot write /dev/full: the disk is full";
    StartLogged("/dev/full");
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    // More than is gathered while the file takes nothing.
    const std::string paste(300000, 'p');
    Type(paste);
    ASSERT_TRUE(DeviceGets(paste));
    ASSERT_TRUE(Shows(message));
    Sends("still shown");
    Type(kAltF4);
    ASSERT_TRUE(Ends());
    const std::string& output = m_terminal.GetOutput();
    EXPECT_EQ(output.find(message), output.rfind(message));
}

TEST_F(CTraceLogTest, AFileThatTakesNothingHoldsOnlyTheEndUp) {
    ASSERT_EQ(mkfifo(m_log.c_str(), 0600), 0);
    for (const bool isRead : {true, false}) {
        StartLogged(m_log);
        ASSERT_TRUE(DeviceGets("ATE1V1\r"));
        const std::string paste(500000, 'p');
        Type(paste);
        ASSERT_TRUE(DeviceGets(paste));
        Type(kAltF4);
        ASSERT_TRUE(Shows("waiting for " + m_log));
        ASSERT_TRUE(GivesTerminalBack());
        if (!isRead) {
            Type("\x03");
            EXPECT_TRUE(Ends());
            EXPECT_GE(Screen().FindRow("Cannot write " + m_log), 0);
            break;
        }
        const CDescriptor reader(open(m_log.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        std::string log;
        EXPECT_TRUE(Fulfils("the end", [&] {
            std::array<char, 65536> bytes;
            const ssize_t count = read(reader.Get(), bytes.data(), bytes.size());
            log.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
            return m_program->HasEnded() && count <= 0;
        }));
        EXPECT_TRUE(Ends());
        m_record = {{true, "ATE1V1\r" + paste}};
        EXPECT_EQ(Decode(log), m_record);
    }
}
