// The faults that the simulated modem shows on request.
#include "tests/simulator/TestModem.h"

using namespace modemsim;

namespace {

SSimulatorProfile WithFaults(const SFaults& faults) {
    SSimulatorProfile profile = QuietProfile();
    profile.faults = faults;
    return profile;
}

} // namespace

TEST(Faults, SilenceSingleBytesAndAFlood) {
    CTestModem later(WithFaults({.silentAfter = 2}));
    EXPECT_EQ(later.Type("AT\rATE1\rAT\r"), okLine + okLine);
    EXPECT_EQ(later.Type(std::string(1 << 20, 'x')), ""); // still takes input

    CTestModem split(WithFaults({.split = true}));
    split.Modem().Input("AT\r", split.Now());
    EXPECT_EQ(split.Modem().Output(split.Now()).size(), 1U);
    EXPECT_EQ(split.Read(), okLine);

    CTestModem flood(QuietProfile());
    flood.Modem().Input("AT+FLOOD\r", flood.Now());
    for (int turn = 0; turn < 1000; ++turn) {
        const std::string_view ready = flood.Modem().Output(flood.Now());
        ASSERT_FALSE(ready.empty());
        flood.Modem().Consume(ready.size(), flood.Now());
    }
    EXPECT_EQ(flood.Type("xAT\r"), okLine + okLine); // a key ends it
}

TEST(Faults, DelayHoldsEachAnswerAndTheInputAfterIt) {
    SSimulatorProfile profile = WithFaults({.delay = 300});
    profile.echo = true;
    CTestModem modem(profile);
    const std::string_view typed = "AT\rAT\r";
    EXPECT_EQ(modem.Modem().Input(typed, modem.Now()), 3U);
    EXPECT_EQ(modem.Read(), "AT\r");
    EXPECT_EQ(modem.Wait(299), "");
    EXPECT_FALSE(modem.Modem().AcceptsInput(modem.Now()));
    EXPECT_EQ(modem.Wait(1), okLine);
    EXPECT_EQ(modem.Modem().Input(typed.substr(3), modem.Now()), 3U);
    EXPECT_EQ(modem.Wait(300), "AT\r" + okLine);
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
    EXPECT_EQ(count + modem.Read().size(), 100000000U + 4 + okLine.size());
    // A reader that takes odd pieces sees the same characters.
    modem.Modem().Input("AT+LONG=20000\r", modem.Now());
    EXPECT_EQ(modem.Read(97), CTestModem(QuietProfile()).Type("AT+LONG=20000\r"));
    EXPECT_EQ(CTestModem(WithFaults({.longLine = 12})).Type("AT+GMI\r"),
              "\r\nWirelet\r\n\r\n0123456789AB\r\n\r\nOK\r\n");
}

TEST(Faults, VanishesInMidAnswer) {
    CTestModem modem(WithFaults({.vanishAfter = 10}));
    EXPECT_EQ(modem.Type("AT+GMI\r"), "\r\nWirelet\r");
    EXPECT_FALSE(modem.Modem().Vanished(modem.Now()));
    EXPECT_EQ(modem.Type("AT\r"), "");
    modem.Wait(1000);
    EXPECT_TRUE(modem.Modem().Vanished(modem.Now()));
}
