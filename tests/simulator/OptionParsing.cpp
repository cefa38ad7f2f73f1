// The command line of the program.
#include "tools/SimulatorOptions.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

SSimulatorOptions Parse(std::vector<std::string> words) {
    words.insert(words.begin(), "wirelet-modemsim");
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return ParseOptions(static_cast<int>(words.size()), arguments.data());
}

TEST(OptionParsing, ValuesReachTheirPlaces) {
    const SSimulatorOptions options = Parse({"--link",
                                             "/tmp/m",
                                             "--once",
                                             "--dial",
                                             "55=BUSY",
                                             "--dial==CONNECT",
                                             "--ring",
                                             "1.5",
                                             "--ring-count=3",
                                             "--cmti",
                                             "0.25",
                                             "--delay",
                                             "40",
                                             "--vanish-after",
                                             "7",
                                             "--garbage=9",
                                             "--seed",
                                             "8",
                                             "--no-echo",
                                             "--no-sim",
                                             "--silent-after",
                                             "0"});
    ASSERT_EQ(options.purpose, SSimulatorOptions::EPurpose::Run) << options.problem;
    const SSimulatorProfile& profile = options.profile;
    EXPECT_EQ(options.link, "/tmp/m");
    EXPECT_TRUE(options.once);
    ASSERT_EQ(profile.dialRules.size(), 2U);
    EXPECT_EQ(profile.dialRules[0].ending, "55");
    EXPECT_EQ(profile.dialRules[0].result, EResult::Busy);
    EXPECT_EQ(profile.dialRules[1].ending, "");
    EXPECT_EQ(profile.ringPeriod, 1500);
    EXPECT_EQ(profile.ringCount, 3U);
    EXPECT_EQ(profile.messagePeriod, 250);
    EXPECT_EQ(profile.faults.delay, 40);
    EXPECT_EQ(profile.faults.vanishAfter, 7U);
    EXPECT_EQ(profile.faults.garbage, 9U);
    EXPECT_EQ(profile.faults.seed, 8U);
    EXPECT_EQ(profile.faults.silentAfter, 0U);
    EXPECT_FALSE(profile.echo);
    EXPECT_FALSE(profile.sim);
}

TEST(OptionParsing, RefusesWhatItDoesNotUnderstand) {
    const std::vector<std::string> refused[] = {
        {"--unknown"},
        {"-x"},
        {"word"},
        {"--link"},
        {"--link", ""},
        {"--ring", "0"},
        {"--ring", "nan"},
        {"--ring", "1e9"},
        {"--ring", "1s"},
        {"--delay", "-1"},
        {"--delay", ""},
        {"--long", "100000001"},
        {"--once=1"},
        {"--dial", "5"},
        {"--dial", "x=BUSY"},
        {"--dial", "5=NONE"},
        {"--vanish-after", "0"},
        {"--garbage", "65537"},
        {"--seed", "4294967296"},
    };
    for (const auto& words : refused) {
        const SSimulatorOptions options = Parse(words);
        EXPECT_EQ(options.purpose, SSimulatorOptions::EPurpose::Refuse) << words.front();
        EXPECT_FALSE(options.problem.empty());
    }
    EXPECT_EQ(Parse({"--help"}).purpose, SSimulatorOptions::EPurpose::Help);
    EXPECT_EQ(Parse({"--version"}).purpose, SSimulatorOptions::EPurpose::Version);
}

} // namespace
} // namespace modemsim
