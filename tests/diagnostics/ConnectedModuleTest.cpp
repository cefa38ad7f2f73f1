#include "diagnostics/ModuleTrace.h"
#include "tests/diagnostics/ModuleLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace {

TEST(ConnectedModule, IsLoadedByTheFirstUseAndGivenBackForGood) {
    {
        CVDebug debug("Name");
        EXPECT_EQ(TakeModuleLog(), "");
        EXPECT_TRUE(Print(debug, 8, "text %d", 1));
        EXPECT_EQ(TakeModuleLog(), "load\ninterface\nname Name\noutput 8 text 1\n");
        EXPECT_FALSE(Print(debug, 1, "!refused"));
        EXPECT_EQ(debug.SetModuleName("seven"), 7);
        EXPECT_EQ(TakeModuleLog(), "output 1 !refused\nname seven\n");
        debug.Unload();
        EXPECT_EQ(TakeModuleLog(), "release\nunload\n");
        EXPECT_FALSE(Print(debug, 8, "text"));
        EXPECT_EQ(debug.SetModuleName("other"), 0);
    }
    EXPECT_EQ(TakeModuleLog(), "");
}

TEST(ConnectedModule, NamesAndTextsAreCut) {
    CVDebug debug(nullptr);
    EXPECT_EQ(debug.SetModuleName(std::string(64, 'n').c_str()), TRUE);
    EXPECT_EQ(TakeModuleLog(), "load\ninterface\nname " + std::string(63, 'n') + '\n');
    EXPECT_EQ(debug.SetModuleName(nullptr), 0);
    EXPECT_TRUE(Print(debug, 8, "%s", std::string(5000, 't').c_str()));
    EXPECT_EQ(TakeModuleLog(), "name Unknown Module\noutput 8 " + std::string(511, 't') + '\n');
}

TEST(ConnectedModule, TraceHasTwoLevelsAndOneObject) {
    DebugSetModuleName("Program");
    EXPECT_TRUE(DebugTrace("one %s", "a"));
    EXPECT_TRUE(DebugError("two %#08lx", 0x80000048UL));
    EXPECT_FALSE(DebugError("!"));
    EXPECT_EQ(TakeModuleLog(), "load\ninterface\nname Program\noutput 8 one a\n"
                               "output 1 two 0x80000048\noutput 1 !\n");
    g_AppDebug.Unload();
}

TEST(ConnectedModule, ThreadsTraceOneAtATime) {
    CVDebug debug("Name");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&debug] {
            for (int j = 0; j < 50; ++j)
                EXPECT_TRUE(Print(debug, 8, "text"));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const std::string log = TakeModuleLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 3 + 200);
}

} // namespace
