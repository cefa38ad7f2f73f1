// The command line of the program: what it refuses. What options do shows in ProgramOnPty.
#include "tools/SimulatorOptions.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace modemsim;

namespace {

// Words are parted by one blank; a blank at the end is an empty word.
SSimulatorOptions Parse(const std::string& line) {
    std::istringstream stream("wirelet-modemsim " + line + ' ');
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, ' ');)
        words.push_back(word);
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return ParseOptions(static_cast<int>(words.size()), arguments.data());
}

} // namespace

TEST(OptionParsing, RefusesWhatItDoesNotUnderstand) {
    for (const char* line :
         {"--unknown", "-x", "word", "--link", "--link ", "--ring 0", "--ring nan", "--ring 1e9",
          "--ring 1s", "--delay -1", "--delay ", "--long 100000001", "--once=1", "--dial 5",
          "--dial x=BUSY", "--dial 5=NONE", "--vanish-after 0", "--garbage 65537",
          "--seed 4294967296"}) {
        const SSimulatorOptions options = Parse(line);
        EXPECT_EQ(options.purpose, SSimulatorOptions::EPurpose::Refuse) << line;
        EXPECT_FALSE(options.problem.empty()) << line;
    }
    const SSimulatorOptions options = Parse("--dial 55=BUSY --dial==CONNECT --ring 1.5");
    EXPECT_EQ(options.purpose, SSimulatorOptions::EPurpose::Run);
    EXPECT_EQ(options.profile.dialRules.back().ending, "");
    EXPECT_EQ(options.profile.ringPeriod, 1500);
    EXPECT_EQ(Parse("--help").purpose, SSimulatorOptions::EPurpose::Help);
    EXPECT_EQ(Parse("--version").purpose, SSimulatorOptions::EPurpose::Version);
}
