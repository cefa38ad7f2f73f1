// Debug modules that are not there, or that load and do not do: given up after one attempt, with
// nothing left behind.
#include "diagnostics/Debug.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

TEST(DebugModule, IsGivenUpWhenItDoesNotDo) {
    const fs::path link = fs::read_symlink("/proc/self/exe").parent_path() / "libvxdebug.so";
    // What each module notes.
    const std::pair<const char*, const char*> rows[] = {
        {"libmissing.so", ""},
        {"libwithout_export.so", "load\nunload\n"},
        {"libwithout_interface.so", "load\ninterface\nunload\n"},
        {"librefusing.so", "load\ninterface\nunload\n"},
        {"libfailing_late.so", "load\ninterface\nrelease\nunload\n"},
        {"librefusing_name.so", "load\ninterface\nname test\nrelease\nunload\n"},
    };
    for (const auto& [module, log] : rows) {
        fs::remove(link);
        fs::create_symlink(fs::path(MODULE_FOLDER) / module, link);
        setenv("VXDEBUG_LOG", "", 1);
        CVDebug debug(nullptr);
        EXPECT_EQ(debug.SetModuleName("test"), 0) << module;
        EXPECT_EQ(debug.SetModuleName("again"), 0) << module;
        EXPECT_STREQ(std::getenv("VXDEBUG_LOG"), log) << module;
    }
    fs::remove(link);
}

} // namespace
