// The program itself, as a child, on the pseudo-terminal that it makes.
#include "tools/Descriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

namespace modemsim {
namespace {

// Long enough for a loaded machine; only a failing test waits for it.
constexpr int patience = 20000;

class CProgram {
  public:
    explicit CProgram(std::vector<std::string> words) {
        words.insert(words.begin(), MODEMSIM_PROGRAM);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        m_hOutput = CDescriptor(ends[0]);
        const CDescriptor childEnd(ends[1]);
        m_nChild = fork();
        if (m_nChild == 0) {
            dup2(childEnd.Get(), STDOUT_FILENO);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
    }
    ~CProgram() {
        if (m_nChild > 0) {
            kill(m_nChild, SIGKILL);
            waitpid(m_nChild, nullptr, 0);
        }
    }

    // The first line of its output, without the line's end.
    std::string Path() const {
        std::string line;
        char byte = 0;
        while (read(m_hOutput.Get(), &byte, 1) == 1 && byte != '\n')
            line += byte;
        return line;
    }

    void Signal(int number) const { kill(m_nChild, number); }

    // Its exit status once it ends; -1 if a signal ended it.
    int Wait() {
        int status = 0;
        waitpid(std::exchange(m_nChild, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t m_nChild = -1;
    CDescriptor m_hOutput;
};

CDescriptor OpenDevice(const std::string& path) {
    return CDescriptor(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

void Type(const CDescriptor& device, std::string_view text) {
    ASSERT_EQ(write(device.Get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

// Reads until the end is seen, the device hangs up or patience ends.
std::string ReadUntil(const CDescriptor& device, std::string_view end) {
    std::string text;
    std::array<char, 4096> block;
    pollfd watched{device.Get(), POLLIN, 0};
    while (!text.ends_with(end) && poll(&watched, 1, patience) > 0) {
        const ssize_t count = read(device.Get(), block.data(), block.size());
        if (count <= 0)
            return text + "<hang-up>";
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
}

bool IsThere(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

class ProgramOnPty : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "modemsimXXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_strFolder = name;
        m_strLink = name + "/modem";
    }
    void TearDown() override {
        unlink(m_strLink.c_str());
        rmdir(m_strFolder.c_str());
    }

    std::string m_strFolder;
    std::string m_strLink;
};

TEST_F(ProgramOnPty, OpenersComeAndGoAndSignalsEndIt) {
    ASSERT_EQ(symlink("/nowhere/at/all", m_strLink.c_str()), 0); // stale
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        CProgram program({"--link", m_strLink, "--no-echo"});
        const std::string path = program.Path();
        ASSERT_TRUE(path.starts_with("/dev/pts/")) << path;
        for (int opener = 0; opener < 3; ++opener) {
            const CDescriptor device = OpenDevice(m_strLink);
            ASSERT_TRUE(device.IsOpen());
            EXPECT_EQ(ioctl(device.Get(), TIOCEXCL), 0);
            Type(device, "AT+GMI\r");
            EXPECT_EQ(ReadUntil(device, "OK\r\n"), "\r\nWirelet\r\n\r\nOK\r\n");
        }
        program.Signal(number);
        EXPECT_EQ(program.Wait(), 0);
        EXPECT_FALSE(IsThere(m_strLink));
    }
}

TEST_F(ProgramOnPty, LinkOfAnotherKindIsLeftAlone) {
    const CDescriptor file(open(m_strLink.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    EXPECT_EQ(CProgram({"--link", m_strLink}).Wait(), 1);
    struct stat status {};
    ASSERT_EQ(lstat(m_strLink.c_str(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
}

TEST_F(ProgramOnPty, OnceEndsWithTheLastOpener) {
    CProgram program({"--once", "--link", m_strLink});
    CDescriptor first = OpenDevice(program.Path());
    CDescriptor second = OpenDevice(m_strLink);
    first.Close();
    Type(second, "ATE0\r");
    EXPECT_EQ(ReadUntil(second, "OK\r\n"), "ATE0\r\r\nOK\r\n");
    second.Close();
    EXPECT_EQ(program.Wait(), 0);
    EXPECT_FALSE(IsThere(m_strLink));
}

TEST_F(ProgramOnPty, VanishingHangsUpAndEndsIt) {
    CProgram program({"--vanish-after", "12", "--no-echo", "--link", m_strLink});
    const CDescriptor device = OpenDevice(program.Path());
    Type(device, "ATI\r");
    EXPECT_EQ(ReadUntil(device, "OK\r\n"), "\r\nManufactur<hang-up>");
    EXPECT_EQ(program.Wait(), 0);
    EXPECT_FALSE(IsThere(m_strLink));
}

TEST_F(ProgramOnPty, LargePasteAndTimerComeThrough) {
    CProgram program({"--split", "--ring", "0.05", "--ring-count", "1", "--dial-time", "0"});
    const CDescriptor device = OpenDevice(program.Path());
    EXPECT_EQ(ReadUntil(device, "RING\r\n"), "\r\nRING\r\n");
    Type(device, "ATE0D1\r");
    ReadUntil(device, "CONNECT\r\n");
    const std::string paste(3000, 'x');
    Type(device, paste + "!");
    EXPECT_TRUE(ReadUntil(device, "!") == paste + "!");
}

TEST_F(ProgramOnPty, UnknownOptionIsAnError) {
    CProgram program({"--no-such-option"});
    EXPECT_EQ(program.Path(), "");
    EXPECT_EQ(program.Wait(), 2);
}

} // namespace
} // namespace modemsim
