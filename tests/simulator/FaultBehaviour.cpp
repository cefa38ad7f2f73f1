// The faults that the simulated modem shows on request.
#include "tests/simulator/TestModem.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

SSimulatorProfile WithFaults(const SFaults& faults) {
    SSimulatorProfile profile = QuietProfile();
    profile.faults = faults;
    return profile;
}

TEST(Faults, Silence) {
    CTestModem silent(WithFaults({.silent = true}));
    EXPECT_EQ(silent.Type("ATE1\rAT\r"), "");
    CTestModem later(WithFaults({.silentAfter = 2}));
    EXPECT_EQ(later.Type("AT\rATE1\rAT\r"), okLine + okLine);
    EXPECT_EQ(later.Type(std::string(1 << 20, 'x')), ""); // still takes input
    CTestModem asked(QuietProfile());
    EXPECT_EQ(asked.Type("AT+SIM=SILENCE\rAT\r"), okLine);
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

TEST(Faults, GarbageIsTheSameForTheSameSeed) {
    const SFaults faults{.garbage = 40, .seed = 5};
    CTestModem one(WithFaults(faults));
    CTestModem other(WithFaults(faults));
    const std::string answer = one.Type("AT\r");
    EXPECT_EQ(answer.substr(40), okLine);
    EXPECT_EQ(other.TypeBytewise("AT\r"), answer);
    EXPECT_NE(one.Type("AT\r"), answer);
    EXPECT_NE(CTestModem(WithFaults({.garbage = 40, .seed = 6})).Type("AT\r"), answer);
}

TEST(Faults, SplitShowsSingleBytes) {
    CTestModem modem(WithFaults({.split = true}));
    modem.Modem().Input("AT\r", modem.Now());
    std::string sent;
    for (std::string_view ready; !(ready = modem.Modem().Output(modem.Now())).empty();) {
        ASSERT_EQ(ready.size(), 1U);
        sent += ready;
        modem.Modem().Consume(1, modem.Now());
    }
    EXPECT_EQ(sent, okLine);
}

TEST(Faults, LongLinesAreStreamed) {
    CTestModem modem(QuietProfile());
    modem.Modem().Input("AT+LONG=100000000\r", modem.Now());
    std::uint64_t count = 0;
    char last = 0;
    while (!modem.Modem().AcceptsInput(modem.Now())) {
        const std::string_view ready = modem.Modem().Output(modem.Now());
        ASSERT_FALSE(ready.empty());
        ASSERT_LE(ready.size(), 65536U);
        count += ready.size();
        last = ready.back();
        modem.Modem().Consume(ready.size(), modem.Now());
    }
    EXPECT_GE(last, ' ');
    EXPECT_EQ(count + modem.Read().size(), 100000000U + 4 + okLine.size());

    EXPECT_EQ(CTestModem(WithFaults({.longLine = 12})).Type("AT+GMI\r"),
              "\r\nWirelet\r\n\r\n0123456789AB\r\n\r\nOK\r\n");
    // A reader that takes odd pieces sees the same characters.
    CTestModem pieces(QuietProfile());
    pieces.Modem().Input("AT+LONG=20000\r", pieces.Now());
    std::string line;
    for (std::string_view ready; !(ready = pieces.Modem().Output(pieces.Now())).empty();) {
        line += ready.substr(0, 97);
        pieces.Modem().Consume(std::min<std::size_t>(97, ready.size()), pieces.Now());
    }
    EXPECT_EQ(line, CTestModem(QuietProfile()).Type("AT+LONG=20000\r"));
}

TEST(Faults, VanishesInMidAnswer) {
    CTestModem modem(WithFaults({.vanishAfter = 10}));
    EXPECT_EQ(modem.Type("AT+GMI\r"), "\r\nWirelet\r");
    EXPECT_FALSE(modem.Modem().Vanished(modem.Now()));
    EXPECT_EQ(modem.Type("AT\r"), "");
    modem.Wait(1000);
    EXPECT_TRUE(modem.Modem().Vanished(modem.Now()));

    CTestModem asked(QuietProfile());
    EXPECT_EQ(asked.Type("AT+SIM=VANISH\r"), okLine);
    asked.Wait(1000);
    EXPECT_TRUE(asked.Modem().Vanished(asked.Now()));
}

TEST(Faults, FloodEndsWithAKeyOnlyWhenACommandBeganIt) {
    CTestModem modem(QuietProfile());
    modem.Modem().Input("AT+FLOOD\r", modem.Now());
    for (int turn = 0; turn < 1000; ++turn) {
        const std::string_view ready = modem.Modem().Output(modem.Now());
        ASSERT_FALSE(ready.empty());
        ASSERT_EQ(ready.find_first_of("\r\n"), std::string_view::npos);
        modem.Modem().Consume(ready.size(), modem.Now());
    }
    EXPECT_EQ(modem.Type("xAT\r"), okLine + okLine);

    CTestModem endless(WithFaults({.flood = true}));
    endless.Modem().Input("xAT\r", endless.Now());
    EXPECT_FALSE(endless.Modem().Output(endless.Now()).empty());
}

} // namespace
} // namespace modemsim
