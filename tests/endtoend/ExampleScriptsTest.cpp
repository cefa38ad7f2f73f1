// Each script of examples/ has its session in examples.txt.
#include "tests/support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

TEST(ExampleScriptsTest, EachHasItsSession) {
    const std::string sessions = ReadWholeFile(WIRELET_SESSIONS "/examples.txt");
    for (const auto& entry : std::filesystem::directory_iterator(WIRELET_EXAMPLES)) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(name.ends_with(".scr"), sessions.find("EXAMPLES/" + name) != sessions.npos)
            << name;
    }
}
