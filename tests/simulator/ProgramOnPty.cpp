// The program itself, as a child, on the pseudo-terminal that it makes, and its command line.
#include "tests/simulator/TestModem.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/Simulator.h"
#include "tests/support/TempFolder.h"

#include <csignal>
#include <filesystem>
#include <sstream>
#include <sys/ioctl.h>

using namespace modemsim;

namespace {

// An opener of the device.
struct Opener : CPseudoTerminal {
    explicit Opener(const std::string& path) : CPseudoTerminal(path, path) {}
    void Expect(std::string_view typed, const std::string& answer) {
        Say(typed);
        EXPECT_EQ(Hear(answer.size()), answer);
    }
};

class ProgramOnPty : public testing::Test {
  protected:
    // Awaits the program's orderly end.
    void ExpectEnd(CSimulator& program) const {
        EXPECT_EQ(program.AwaitExit(), 0);
        EXPECT_FALSE(std::filesystem::is_symlink(m_link));
    }

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
        for (int count = 0; count < 3; ++count) {
            Opener opener(m_link);
            // What the first one leaves behind would keep the others out.
            EXPECT_TRUE(count > 0 || ioctl(opener.GetMaster(), TIOCEXCL) == 0);
            opener.Expect("AT+GMI\r", "\r\nWirelet\r\n\r\nOK\r\n");
        }
        program.Kill(number);
        ExpectEnd(program);
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
    std::optional<Opener> first(program.GetPath());
    Opener second(m_link);
    first.reset();
    second.Expect("ATE0\r", "ATE0\r\r\nOK\r\n");
    second.Expect("AT+CPMS=\"SM\"\r", "\r\n+CPMS: 1,50,1,50,1,50\r\n\r\nOK\r\n");
    second.CloseMaster();
    ExpectEnd(program);
}

TEST_F(ProgramOnPty, VanishingHangsUpAndEndsIt) {
    CSimulator program(m_pump, {"--vanish-after", "12", "--no-echo", "--link", m_link});
    Opener device(program.GetPath());
    device.Say("ATI\r");
    EXPECT_EQ(device.Hear(100), "\r\nManufactur");
    ExpectEnd(program);
}

TEST_F(ProgramOnPty, LargePasteAndTimerComeThrough) {
    CSimulator program(m_pump,
                       {"--split", "--ring", "0.5", "--ring-count", "1", "--dial-time", "0"});
    Opener device(program.GetPath());
    device.Expect("", "\r\nRING\r\n");
    device.Expect("ATE0D1\r", "ATE0D1\r\r\nCONNECT\r\n");
    const std::string paste(3000, 'x');
    device.Expect(paste, paste);
}
