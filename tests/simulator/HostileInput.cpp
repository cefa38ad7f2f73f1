// Input that no well-meaning opener sends: it must neither grow memory nor stop the modem.
#include "tests/simulator/TestModem.h"

#include <random>
#include <sstream>

using namespace modemsim;

constexpr std::size_t mebibyte = 1 << 20;

// The most that may wait to be sent: the limit itself, and what one piece of input adds to it.
constexpr std::size_t queueBound = 65536 + 16384;

TEST(HostileInput, EndlessLines) {
    CTestModem modem;
    EXPECT_EQ(modem.Type(std::string(mebibyte, 'A')).size(), mebibyte);
    EXPECT_EQ(modem.Type("\r"), "\r");
    const std::string line = "AT" + std::string(mebibyte, '1') + "\r";
    EXPECT_EQ(modem.Type(line), line + "\r\nERROR\r\n");
    EXPECT_EQ(modem.Type("ATE0\r"), "ATE0\r" + okLine);
    const std::string longest = "ATE" + std::string(CLineEditor::lineLimit - 1, ' ');
    EXPECT_EQ(modem.Type(longest + "\r"), okLine);
    EXPECT_EQ(modem.Type(longest + " \r"), "\r\nERROR\r\n");
    modem.Type("AT+CMGF=1\rAT+CMGS=\"1\"\r");
    EXPECT_EQ(modem.Type(std::string(4 * mebibyte, 'x')), "");
    EXPECT_EQ(modem.Type("\x1A"), "\r\nERROR\r\n");
}

TEST(HostileInput, AnyBytesInAnyState) {
    std::minstd_rand random(7);
    CTestModem modem(QuietProfile());
    for (int round = 0; round < 400; ++round) {
        std::string line = round % 3 == 0 ? "AT+CMGS=" : "AT";
        for (std::size_t count = random() % 80; count > 0; --count)
            line += static_cast<char>(random() >> 8 & 0xFF);
        modem.Type(line + "\r");
        modem.Wait(2000);
    }
    // Whatever the noise set, silence, the escape and a reset bring the modem back.
    modem.Type(std::string(4096, '\0') + "\x1B\r");
    modem.Wait(5000);
    modem.Type("+++");
    modem.Wait(5000);
    modem.Type("\x1B");
    EXPECT_NE(modem.Type("\rAT&F\rATE0V1Q0\rAT\r").find(okLine), std::string::npos);
}

TEST(HostileInput, ParametersOfEveryShape) {
    CTestModem modem(QuietProfile());
    std::istringstream commands(
        "S S0= S0=256 S1=1 I10 + +? +=? & &9 / +CCLK= +CCLK=\"\" +CMEE=3 +CMGD=1,9 +CMGD=,,, +CMGF "
        "+CMGL=\"NO\" +CMGR=-1 +CMGS=,,,,,,,,,,,,,,,,,,,, +CNMI=1,1,1,1,1,1 +CNMI=9 +COPS=2 "
        "+CPMS=\"ME\" +CREG=1, +CREG=1+CSQ +CSCS=\"\" +CSQ? +LONG= +LONG=100000001 +SIM= +SIM=NO "
        "+SIM=REGISTRATION +SIM=MESSAGE,hi,\"x\"");
    for (std::string command; commands >> command;)
        EXPECT_EQ(modem.Type("AT" + command + "\r"), "\r\nERROR\r\n") << command;
}

TEST(HostileInput, AnOpenerThatDoesNotReadIsHeld) {
    CTestModem modem;
    const std::string paste(mebibyte, 'x');
    std::size_t taken = modem.Modem().Input(paste, modem.Now());
    EXPECT_LT(taken, queueBound);
    EXPECT_FALSE(modem.Modem().AcceptsInput(modem.Now()));
    EXPECT_EQ(modem.Modem().Input(paste, modem.Now()), 0U);
    std::string echoed = modem.Read();
    EXPECT_EQ(echoed.size(), taken);
    EXPECT_EQ(echoed + modem.Type(std::string_view(paste).substr(taken)), paste);
}

TEST(HostileInput, UnreadUnsolicitedLinesAreBounded) {
    SSimulatorProfile profile = QuietProfile();
    profile.ringPeriod = 1;
    profile.registrationPeriod = 1;
    CTestModem modem(profile);
    modem.Type("AT+CREG=2\r");
    for (TimeMs now = modem.Now(); now < modem.Now() + 50000; ++now)
        modem.Modem().Advance(now);
    EXPECT_LT(modem.Read().size(), queueBound);
}
