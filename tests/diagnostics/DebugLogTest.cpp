// The debug module that is installed: its lines, and where they go.
#include "diagnostics/ModuleTrace.h"
#include "tests/support/DeviceNamespace.h"
#include "tests/support/Pipe.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

using namespace std::string_literals;

// What is there at the moment, which is something.
std::string ReadSome(int descriptor) {
    char bytes[200];
    const ssize_t length = read(descriptor, bytes, sizeof bytes);
    return std::string(bytes, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
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

// The text with the time at the beginning of each line, in the form that it must have, replaced by
// "T"; lines that are indented have none.
std::string WithoutTimes(const std::string& text) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        int length = 0;
        std::sscanf(line.c_str(), "%*4d-%*2d-%*2d %*2d:%*2d:%*2d.%*3d %n", &length);
        result +=
            (length == sizeof "2026-01-31 23:59:59.999" ? "T " + line.substr(24) : line) + '\n';
    }
    return result;
}

class CDebugLogTest : public ::testing::Test {
  protected:
    ~CDebugLogTest() override {
        unsetenv("VXDEBUG_FILE");
        g_AppDebug.Unload();
    }
    static void Load(const std::string& file) {
        setenv("VXDEBUG_FILE", file.c_str(), 1);
        g_AppDebug.Unload();
        EXPECT_TRUE(g_AppDebug.Load());
        DebugSetModuleName("test");
    }

    CTempFolder m_folder;
};

TEST_F(CDebugLogTest, WritesLinesUnderTheNamesOfBothObjects) {
    const std::string file = m_folder.GetPath("log");
    Load(file);
    g_TapiDebug.Load();
    g_TapiDebug.SetModuleName("VXTapi");
    EXPECT_TRUE(DebugTrace("CVModem::Open() - %s = %d\n", "/dev/x", 1));
    EXPECT_TRUE(DebugError("failed returning %#08lx", 0x80000048UL));
    EXPECT_TRUE(DebugTrace("->%s", "AT\r\nO\tK \x1B[2J\x7F\x9B\\ 100%n\n\n"));
    DebugSetModuleName("a\nb");
    EXPECT_TRUE(DebugTrace("%s", std::string(5000, '\x01').c_str()));
    g_TapiDebug.Unload();
    g_AppDebug.Unload();
    std::string longest;
    for (int count = 0; count < 511; ++count)
        longest += "\\x01";
    EXPECT_EQ(WithoutTimes(ReadWholeFile(file)),
              "T trace test: CVModem::Open() - /dev/x = 1\n"
              "T error test: failed returning 0x80000048\n"
              "T trace test: ->AT\\r\n    O\\tK \\x1b[2J\\x7f\\x9b\\\\ 100%n\n"
              "T trace a\n    b: " +
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
        Load(path);
        Pipe pipe;
        const CStandardError standardError(pipe.writer.Get());
        EXPECT_TRUE(DebugTrace("text"));
        EXPECT_EQ(WithoutTimes(ReadSome(pipe.reader.Get())), "T trace test: text\n") << path;

        // A full pipe and one without a reader neither stop nor end the program.
        for (int count = 0; count < 5000; ++count)
            DebugTrace("fills the pipe");
        pipe.reader.Reset();
        signal(SIGPIPE, SIG_DFL);
        DebugTrace("lost");

        // A terminal is left alone.
        CPseudoTerminal terminal;
        const CStandardError standardTerminal(terminal.GetSlave());
        DebugError("not shown");
        EXPECT_EQ(terminal.Read(100), "");
    }
}

TEST_F(CDebugLogTest, GoesToTheJournalAsFarAsThereIsOne) {
    if (const std::string& problem = CDeviceNamespace::Enter(); !problem.empty())
        GTEST_SKIP() << problem;
    Load("");
    Pipe pipe;
    const CStandardError standardError(pipe.writer.Get());
    DebugError("too early");
    EXPECT_EQ(WithoutTimes(ReadSome(pipe.reader.Get())), "T error test: too early\n");

    const sockaddr_un address = {AF_UNIX, "/run/systemd/journal/socket"};
    std::filesystem::create_directories("/run/systemd/journal");
    const CDescriptor journal(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(journal.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    DebugTrace("text\nPRIORITY=1");
    EXPECT_EQ(ReadSome(journal.Get()), "MESSAGE\n\x19"s + std::string(7, '\0') +
                                           "test: text\n    PRIORITY=1\nPRIORITY=7\n"
                                           "SYSLOG_IDENTIFIER=wirelet\n");
    // One that has stopped does not stop the program.
    for (int count = 0; count < 2000; ++count)
        DebugTrace("fills its queue");
}

} // namespace
