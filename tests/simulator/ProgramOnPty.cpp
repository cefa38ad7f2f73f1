// The program itself, as a child, on the pseudo-terminal that it makes, and its command line.
#include "tests/simulator/TestModem.h"
#include "tests/support/Simulator.h"
#include "tests/support/TempFolder.h"

#include <csignal>
#include <filesystem>
#include <sstream>
#include <sys/ioctl.h>

using namespace modemsim;

namespace {

CDescriptor OpenDevice(const std::string& path) {
    return CDescriptor(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

// Types and reads until the end is seen, the device hangs up or nothing comes for a long time.
std::string Ask(const CDescriptor& device, std::string_view text, std::string_view end) {
    EXPECT_EQ(write(device.Get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    constexpr int kPatience = 20000;
    std::string answer;
    char block[4096];
    pollfd watched{device.Get(), POLLIN, 0};
    while (!answer.ends_with(end) && poll(&watched, 1, kPatience) > 0) {
        const ssize_t count = read(device.Get(), block, sizeof(block));
        if (count <= 0)
            return answer + "<hang-up>";
        answer.append(block, static_cast<std::size_t>(count));
    }
    return answer;
}

class ProgramOnPty : public testing::Test {
  protected:
    bool IsLinkThere() const { return std::filesystem::is_symlink(m_link); }

    CPump m_pump;
    CTempFolder m_folder;
    const std::string m_link = m_folder.GetPath("modem");
};

} // namespace

TEST(OptionParsing, RefusesWhatItDoesNotUnderstand) {
    std::istringstream lines(
        "--unknown|-x|word|--link|--link |--ring 0|--ring nan|--ring 1e9|--ring 1s|--delay -1|"
        "--delay |--long 100000001|--once=1|--dial 5|--dial x=BUSY|--dial 5=NONE|--vanish-after 0|"
        "--garbage 65537|--seed 4294967296|--messages 51");
    for (std::string line; std::getline(lines, line, '|');) {
        const SimulatorOptions options = Parse(line);
        EXPECT_EQ(options.purpose, SimulatorOptions::EPurpose::Refuse) << line;
        EXPECT_FALSE(options.problem.empty()) << line;
    }
    const SimulatorOptions options = Parse("--dial 55=BUSY --dial==CONNECT --ring 1.5");
    EXPECT_EQ(options.purpose, SimulatorOptions::EPurpose::Run);
    EXPECT_EQ(options.profile.dialRules.back().ending, "");
    EXPECT_EQ(options.profile.ringPeriod, 1500);
    EXPECT_EQ(Parse("--help").purpose, SimulatorOptions::EPurpose::Help);
    EXPECT_EQ(Parse("--version").purpose, SimulatorOptions::EPurpose::Version);
}

TEST_F(ProgramOnPty, OpenersComeAndGoAndSignalsEndIt) {
    std::filesystem::create_symlink("/nowhere/at/all", m_link); // stale
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        CSimulator program(m_pump, {"--link", m_link, "--no-echo"});
        EXPECT_TRUE(program.GetPath().starts_with("/dev/pts/")) << program.GetPath();
        for (int opener = 0; opener < 3; ++opener) {
            CDescriptor device;
            EXPECT_TRUE(m_pump.RunUntil([&] {
                device = OpenDevice(m_link);
                return bool(device);
            }));
            // What the first one leaves behind would keep the others out.
            EXPECT_TRUE(opener > 0 || ioctl(device.Get(), TIOCEXCL) == 0);
            EXPECT_EQ(Ask(device, "AT+GMI\r", "OK\r\n"), "\r\nWirelet\r\n\r\nOK\r\n");
        }
        program.Kill(number);
        EXPECT_EQ(program.AwaitExit(), 0);
        EXPECT_FALSE(IsLinkThere());
    }
}

TEST_F(ProgramOnPty, RefusesAnUnknownOptionAndALinkOfAnotherKind) {
    m_folder.Write("modem", "kept");
    EXPECT_EQ(CSimulator(m_pump, {"--link", m_link}).AwaitExit(), 1);
    EXPECT_EQ(ReadWholeFile(m_link), "kept");
    CSimulator program(m_pump, {"--no-such-option"});
    EXPECT_EQ(program.GetPath(), "");
    EXPECT_EQ(program.AwaitExit(), 2);
}

TEST_F(ProgramOnPty, OnceEndsWithTheLastOpener) {
    CSimulator program(m_pump, {"--once", "--link", m_link, "--messages", "1"});
    CDescriptor first = OpenDevice(program.GetPath());
    CDescriptor second = OpenDevice(m_link);
    first.Reset();
    EXPECT_EQ(Ask(second, "ATE0\r", "OK\r\n"), "ATE0\r\r\nOK\r\n");
    EXPECT_EQ(Ask(second, "AT+CPMS=\"SM\"\r", "OK\r\n"), "\r\n+CPMS: 1,50,1,50,1,50\r\n\r\nOK\r\n");
    second.Reset();
    EXPECT_EQ(program.AwaitExit(), 0);
    EXPECT_FALSE(IsLinkThere());
}

TEST_F(ProgramOnPty, VanishingHangsUpAndEndsIt) {
    CSimulator program(m_pump, {"--vanish-after", "12", "--no-echo", "--link", m_link});
    const CDescriptor device = OpenDevice(program.GetPath());
    EXPECT_EQ(Ask(device, "ATI\r", "OK\r\n"), "\r\nManufactur<hang-up>");
    EXPECT_EQ(program.AwaitExit(), 0);
    EXPECT_FALSE(IsLinkThere());
}

TEST_F(ProgramOnPty, LargePasteAndTimerComeThrough) {
    CSimulator program(m_pump,
                       {"--split", "--ring", "0.05", "--ring-count", "1", "--dial-time", "0"});
    const CDescriptor device = OpenDevice(program.GetPath());
    EXPECT_EQ(Ask(device, "", "RING\r\n"), "\r\nRING\r\n");
    Ask(device, "ATE0D1\r", "CONNECT\r\n");
    const std::string paste = std::string(3000, 'x') + '!';
    EXPECT_EQ(Ask(device, paste, "!"), paste);
}
