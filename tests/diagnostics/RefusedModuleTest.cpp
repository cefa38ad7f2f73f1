// Built once for each way in which a module can fail: SUITE names it, EXPECTED_LOG is what one
// attempt leaves.
#include "tests/diagnostics/ModuleLog.h"

#include <gtest/gtest.h>

namespace {

TEST(SUITE, IsTriedOnceAndLetGo) {
    CVDebug debug("Name");
    EXPECT_FALSE(Print(debug, 8, "text"));
    EXPECT_EQ(TakeModuleLog(), EXPECTED_LOG);
    EXPECT_FALSE(Print(debug, 8, "text"));
    EXPECT_EQ(debug.SetModuleName("Other"), 0);
    EXPECT_EQ(TakeModuleLog(), "");
}

} // namespace
