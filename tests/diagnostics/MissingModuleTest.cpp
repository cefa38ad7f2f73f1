#include "tests/diagnostics/ModuleLog.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

// The module that is put beside the program later shows whether it is looked for again.
TEST(MissingModule, IsLookedForOnce) {
    const std::filesystem::path folder =
        std::filesystem::read_symlink("/proc/self/exe").parent_path();
    std::filesystem::remove(folder / "libvxdebug.so");
    CVDebug debug("Name");
    EXPECT_EQ(debug.SetModuleName("Other"), FALSE);

    std::filesystem::copy_file(MODULE_PATH, folder / "libvxdebug.so");
    EXPECT_FALSE(Print(debug, 8, "text"));
    EXPECT_EQ(debug.SetModuleName("Name"), 0);
    EXPECT_EQ(TakeModuleLog(), "");
    {
        CVDebug later("Later");
        EXPECT_TRUE(Print(later, 8, "text"));
    }
    std::filesystem::remove(folder / "libvxdebug.so");
}

} // namespace
