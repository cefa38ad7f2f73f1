#include "diagnostics/ModuleTrace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

// What the test module beside the program has noted since the last call.
std::string TakeModuleLog() {
    const char* const log = std::getenv("VXDEBUG_LOG");
    const std::string text = log ? log : "";
    unsetenv("VXDEBUG_LOG");
    return text;
}

void UseAndGiveBack() {
    DebugSetModuleName(std::string(64, 'n').c_str());
    EXPECT_TRUE(DebugTrace("one %s", "a"));
    EXPECT_TRUE(DebugError("two %#08lx", 0x80000048UL));
    EXPECT_FALSE(DebugError("!"));
    EXPECT_EQ(TakeModuleLog(), "load\ninterface\nname " + std::string(63, 'n') +
                                   "\noutput 8 one a\noutput 1 two 0x80000048\noutput 1 !\n");
    EXPECT_TRUE(DebugTrace("%s", std::string(5000, 't').c_str()));
    EXPECT_EQ(TakeModuleLog(), "output 8 " + std::string(511, 't') + '\n');

    g_AppDebug.Unload();
    EXPECT_FALSE(DebugTrace("text"));
    EXPECT_EQ(TakeModuleLog(), "release\nunload\n");
}

// In a process of its own, which has no module afterwards.
TEST(DebugModule, IsLoadedByTheFirstUseAndGivenBackForGood) {
    EXPECT_EXIT(
        {
            UseAndGiveBack();
            _exit(testing::Test::HasFailure());
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
