// Input that no well-meaning opener sends: it must neither grow memory nor stop the modem.
#include "tests/simulator/TestModem.h"

#include <gtest/gtest.h>

#include <random>

namespace modemsim {
namespace {

constexpr std::size_t mebibyte = 1 << 20;

// The most that may wait to be sent: the limit itself, and what one piece of input adds to it.
constexpr std::size_t queueBound = 65536 + 16384;

std::size_t WaitingBytes(CTestModem& modem) {
    return modem.Read().size();
}

TEST(HostileInput, EndlessLines) {
    CTestModem modem;
    EXPECT_EQ(modem.Type(std::string(mebibyte, 'A')).size(), mebibyte);
    EXPECT_EQ(modem.Type("\r"), "\r");
    const std::string line = "AT" + std::string(mebibyte, '1') + "\r";
    EXPECT_EQ(modem.Type(line), line + "\r\nERROR\r\n");
    EXPECT_EQ(modem.Type("AT\r"), "AT\r" + okLine);
    const std::string longest = "ATE" + std::string(CLineEditor::lineLimit - 1, ' ');
    EXPECT_EQ(modem.Type(longest + "\r").find("OK") != std::string::npos, true);
    EXPECT_EQ(modem.Type(longest + " \r"), "\r\nERROR\r\n");
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
    const std::string nothing(4096, '\0');
    modem.Type(nothing + "\x1B\r");
    modem.Wait(5000);
    modem.Type("+++");
    modem.Wait(5000);
    // Whatever the noise set, closing and resetting brings the modem back.
    modem.Type("\x1B");
    EXPECT_NE(modem.Type("\rAT&F\rATE0V1Q0\rAT\r").find(okLine), std::string::npos);
}

TEST(HostileInput, ParametersOfEveryShape) {
    CTestModem modem(QuietProfile());
    const char* lines[] = {
        "AT+CMGD=1,9",
        "AT+CMGD=,,,",
        "AT+CMGL=\"NO\"",
        "AT+CMGR=-1",
        "AT+CNMI=1,1,1,1,1,1",
        "AT+CNMI=9",
        "AT+COPS=2",
        "AT+CSCS=\"\"",
        "AT+CPMS=\"ME\"",
        "AT+LONG=100000001",
        "AT+LONG=",
        "AT+SIM=",
        "AT+SIM=NO",
        "AT+SIM=REGISTRATION",
        "AT+SIM=MESSAGE,hi,\"x\"",
        "AT+",
        "AT+?",
        "AT+=?",
        "AT&",
        "AT&9",
        "AT+CREG=1,",
        "AT+CMGS=,,,,,,,,,,,,,,,,,,,,",
        "AT+CSQ?",
        "AT+CCLK=",
        "AT+CCLK=\"\"",
        "AT+CMGF",
        "AT/",
    };
    for (const char* line : lines)
        EXPECT_EQ(modem.Type(std::string(line) + "\r"), "\r\nERROR\r\n") << line;
}

TEST(HostileInput, EndlessMessageText) {
    CTestModem modem(QuietProfile());
    modem.Type("AT+CMGF=1\rAT+CMGS=\"1\"\r");
    EXPECT_EQ(modem.Type(std::string(4 * mebibyte, 'x')), "");
    EXPECT_EQ(modem.Type("\x1A"), "\r\nERROR\r\n");
}

TEST(HostileInput, AnOpenerThatDoesNotReadIsHeld) {
    CTestModem modem;
    const std::string paste(mebibyte, 'x');
    std::size_t taken = modem.Modem().Input(paste, modem.Now());
    EXPECT_LT(taken, queueBound);
    EXPECT_FALSE(modem.Modem().AcceptsInput(modem.Now()));
    EXPECT_EQ(modem.Modem().Input(paste, modem.Now()), 0U);
    EXPECT_EQ(WaitingBytes(modem), taken);

    std::string echoed(taken, 'x');
    echoed += modem.Type(std::string_view(paste).substr(taken));
    EXPECT_EQ(echoed, paste);
}

TEST(HostileInput, UnreadUnsolicitedLinesAreBounded) {
    SSimulatorProfile profile = QuietProfile();
    profile.ringPeriod = 1;
    profile.registrationPeriod = 1;
    CTestModem modem(profile);
    modem.Type("AT+CREG=2\r");
    for (TimeMs now = modem.Now(); now < modem.Now() + 50000; ++now)
        modem.Modem().Advance(now);
    EXPECT_LT(WaitingBytes(modem), queueBound);
}

} // namespace
} // namespace modemsim
