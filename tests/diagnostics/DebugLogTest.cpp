// The debug module that is installed: its lines, and where they go.
#include "diagnostics/Debug.h"
#include "services/debug/Journal.h"
#include "tests/support/Pipe.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

BOOL Print(CVDebug& debug, DWORD level, LPCSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const BOOL taken = debug.Print(level, format, arguments);
    va_end(arguments);
    return taken;
}

// Standard error is another file for a while.
class CStandardError {
  public:
    explicit CStandardError(int descriptor) : m_before(dup(STDERR_FILENO)) {
        dup2(descriptor, STDERR_FILENO);
    }
    ~CStandardError() { dup2(m_before.Get(), STDERR_FILENO); }

  private:
    CDescriptor m_before;
};

// The text with the time at the beginning of each line, which it must have in this form, replaced
// by "T"; lines that are indented have none.
std::string WithoutTimes(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00 00:00:00.000 ";
    std::string result;
    while (!text.empty()) {
        std::string begin(text.substr(0, kForm.size()));
        std::replace_if(
            begin.begin(), begin.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
        const std::string_view line = text.substr(0, text.find('\n') + 1);
        text.remove_prefix(line.empty() ? text.size() : line.size());
        result += begin == kForm ? "T " + std::string(line.substr(kForm.size())) : line;
    }
    return result;
}

class CDebugLogTest : public ::testing::Test {
  protected:
    ~CDebugLogTest() override { unsetenv("VXDEBUG_FILE"); }
    void UseFile(const std::string& path) { setenv("VXDEBUG_FILE", path.c_str(), 1); }

    CTempFolder m_folder;
};

TEST_F(CDebugLogTest, WritesLinesUnderTheNamesOfBothObjects) {
    const std::string file = m_folder.GetPath("log");
    UseFile(file);
    {
        CVDebug application(nullptr);
        CVDebug telephony(nullptr);
        application.SetModuleName("Mobile Wirelet");
        telephony.SetModuleName("VXTapi");
        EXPECT_TRUE(Print(application, 8, "CVModem::Open() - %s = %d\n", "/dev/x", 1));
        EXPECT_TRUE(Print(telephony, 1, "failed returning %#08lx", 0x80000048UL));
        EXPECT_TRUE(Print(application, 8, "->%s", "AT\r\nO\tK \x1B[2J\x7F\x9B\\ 100%n\n\n"));
        application.SetModuleName("a\nb");
        EXPECT_TRUE(Print(application, 5, "\n"));
        EXPECT_TRUE(Print(application, 5, "%s", std::string(5000, '\x01').c_str()));
    }
    std::string longest;
    for (int count = 0; count < 511; ++count)
        longest += "\\x01";
    EXPECT_EQ(WithoutTimes(ReadWholeFile(file)),
              "T trace Mobile Wirelet: CVModem::Open() - /dev/x = 1\n"
              "T error VXTapi: failed returning 0x80000048\n"
              "T trace Mobile Wirelet: ->AT\\r\n    O\\tK \\x1b[2J\\x7f\\x9b\\\\ 100%n\n"
              "T level 5 a\n    b: \n"
              "T level 5 a\n    b: " +
                  longest + '\n');
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    // Nothing in it keeps it in the process.
    const auto module =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libvxdebug.so";
    EXPECT_TRUE(std::filesystem::exists(module));
    EXPECT_EQ(dlopen(module.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST_F(CDebugLogTest, AFileThatCannotBeWrittenFallsBackToStandardError) {
    for (const std::string& path : {std::string("/dev/full"), m_folder.GetPath("missing/log")}) {
        UseFile(path);
        CVDebug debug("test");
        Pipe pipe;
        const CStandardError standardError(pipe.writer.Get());
        EXPECT_TRUE(Print(debug, 8, "text"));
        char line[100] = {};
        ASSERT_GT(read(pipe.reader.Get(), line, sizeof line - 1), 0);
        EXPECT_EQ(WithoutTimes(line), "T trace test: text\n") << path;

        // A full pipe and one without a reader neither stop nor end the program.
        for (int count = 0; count < 5000; ++count)
            Print(debug, 8, "fills the pipe");
        pipe.reader.Reset();
        signal(SIGPIPE, SIG_DFL);
        Print(debug, 8, "lost");

        // A terminal is left alone.
        CPseudoTerminal terminal;
        const CStandardError standardTerminal(terminal.GetSlave());
        Print(debug, 1, "not shown");
        EXPECT_EQ(terminal.Read(100), "");
    }
}

TEST_F(CDebugLogTest, SpeaksTheJournalsProtocol) {
    const std::string path = m_folder.GetPath("journal");
    const CDescriptor journal(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    const debugmodule::CJournal log(path.c_str());
    EXPECT_FALSE(log.Write(3, "too early"));

    ASSERT_EQ(bind(journal.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_TRUE(log.Write(7, "name: text\n    MESSAGE=x"));
    char datagram[200] = {};
    const ssize_t length = recv(journal.Get(), datagram, sizeof datagram, 0);
    ASSERT_GT(length, 0);
    const auto field = [](const std::string& name, const std::string& value) {
        return name + '\n' + static_cast<char>(value.size()) + std::string(7, '\0') + value + '\n';
    };
    EXPECT_EQ(std::string(datagram, static_cast<std::size_t>(length)),
              field("MESSAGE", "name: text\n    MESSAGE=x") + field("PRIORITY", "7") +
                  field("SYSLOG_IDENTIFIER", "wirelet"));
}

} // namespace
