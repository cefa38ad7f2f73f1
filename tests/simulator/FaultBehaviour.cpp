// The faults that the simulated modem shows on request, and input that no well-meaning opener
// sends: that must neither grow memory nor stop the modem.
#include "tests/simulator/TestModem.h"

#include <random>

using namespace modemsim;

namespace {

constexpr std::size_t kMebibyte = 1 << 20;

// The most that may wait to be sent: the limit itself, and what one piece of input adds to it.
constexpr std::size_t kQueueBound = 65536 + 16384;

} // namespace

TEST(Faults, SingleBytesAndAFlood) {
    CTestModem split(QuietProfile("--no-echo --split"));
    split.Modem().Input("AT\r", split.Now());
    EXPECT_EQ(split.Modem().Output(split.Now()).size(), 1U);
    EXPECT_EQ(split.Read(), kOkLine);

    CTestModem flood(QuietProfile());
    flood.Modem().Input("AT+FLOOD\r", flood.Now());
    for (int turn = 0; turn < 1000; ++turn) {
        const std::string_view ready = flood.Modem().Output(flood.Now());
        ASSERT_FALSE(ready.empty());
        flood.Modem().Consume(ready.size(), flood.Now());
    }
    EXPECT_EQ(flood.Type("xAT\r"), kOkLine + kOkLine); // a key ends it
}

TEST(Faults, DelayHoldsEachAnswerAndTheInputAfterIt) {
    CTestModem modem(QuietProfile("--delay 300"));
    const std::string_view typed = "AT\rAT\r";
    EXPECT_EQ(modem.Modem().Input(typed, modem.Now()), 3U);
    EXPECT_EQ(modem.Read(), "AT\r");
    EXPECT_EQ(modem.Wait(299), "");
    EXPECT_FALSE(modem.Modem().AcceptsInput(modem.Now()));
    EXPECT_EQ(modem.Wait(1), kOkLine);
    EXPECT_EQ(modem.Modem().Input(typed.substr(3), modem.Now()), 3U);
    EXPECT_EQ(modem.Wait(300), "AT\r" + kOkLine);
    EXPECT_FALSE(modem.Modem().NextDeadline());
}

TEST(Faults, LongLinesAreStreamed) {
    CTestModem modem(QuietProfile());
    modem.Modem().Input("AT+LONG=100000000\r", modem.Now());
    std::uint64_t count = 0;
    while (!modem.Modem().AcceptsInput(modem.Now())) {
        const std::string_view ready = modem.Modem().Output(modem.Now());
        ASSERT_FALSE(ready.empty());
        ASSERT_LE(ready.size(), 65536U);
        count += ready.size();
        modem.Modem().Consume(ready.size(), modem.Now());
    }
    EXPECT_EQ(count + modem.Read().size(), 100000000U + 4 + kOkLine.size());
    // A reader that takes odd pieces sees the same characters.
    modem.Modem().Input("AT+LONG=20000\r", modem.Now());
    EXPECT_EQ(modem.Read(97), CTestModem(QuietProfile()).Type("AT+LONG=20000\r"));
}

TEST(HostileInput, EndlessLines) {
    CTestModem modem;
    EXPECT_EQ(modem.Type(std::string(kMebibyte, 'A')).size(), kMebibyte);
    EXPECT_EQ(modem.Type("\r"), "\r");
    const std::string line = "AT" + std::string(kMebibyte, '1') + "\r";
    EXPECT_EQ(modem.Type(line), line + "\r\nERROR\r\n");
    EXPECT_EQ(modem.Type("ATE0\r"), "ATE0\r" + kOkLine);
    const std::string longest = "ATE" + std::string(CLineEditor::kLineLimit - 1, ' ');
    EXPECT_EQ(modem.Type(longest + "\r"), kOkLine);
    EXPECT_EQ(modem.Type(longest + " \r"), "\r\nERROR\r\n");
    modem.Type("AT+CMGF=1\rAT+CMGS=\"1\"\r");
    EXPECT_EQ(modem.Type(std::string(4 * kMebibyte, 'x')), "");
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
    EXPECT_NE(modem.Type("\rAT&F\rATE0V1Q0\rAT\r").find(kOkLine), std::string::npos);
}

TEST(HostileInput, AnOpenerThatDoesNotReadIsHeld) {
    CTestModem modem;
    const std::string paste(kMebibyte, 'x');
    std::size_t taken = modem.Modem().Input(paste, modem.Now());
    EXPECT_LT(taken, kQueueBound);
    EXPECT_FALSE(modem.Modem().AcceptsInput(modem.Now()));
    EXPECT_EQ(modem.Modem().Input(paste, modem.Now()), 0U);
    std::string echoed = modem.Read();
    EXPECT_EQ(echoed.size(), taken);
    EXPECT_EQ(echoed + modem.Type(std::string_view(paste).substr(taken)), paste);
}

TEST(HostileInput, UnreadUnsolicitedLinesAreBounded) {
    SimulatorProfile profile = QuietProfile();
    profile.ringPeriod = 1;
    profile.registrationPeriod = 1;
    CTestModem modem(profile);
    modem.Type("AT+CREG=2\r");
    for (TimeMs now = modem.Now(); now < modem.Now() + 50000; ++now)
        modem.Modem().Advance(now);
    EXPECT_LT(modem.Read().size(), kQueueBound);
}
