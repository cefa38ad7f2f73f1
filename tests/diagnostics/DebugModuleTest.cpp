// Debug modules that do, that are not there, and that load and do not do.
#include "diagnostics/ModuleTrace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

namespace {

std::string s_log;

// What the modules have told since the last call.
std::string TakeModuleLog() {
    return std::exchange(s_log, {});
}

// Puts a module where it is looked for.
void Install(const char* module) {
    namespace fs = std::filesystem;
    const fs::path link = fs::read_symlink("/proc/self/exe").parent_path() / "libvxdebug.so";
    fs::remove(link);
    fs::create_symlink(fs::path(MODULE_FOLDER) / module, link);
}

} // namespace

extern "C" __attribute__((visibility("default"))) void NoteDebugModule(const char* text) {
    s_log.append(text).append("\n");
}

// One test: the modules take turns in one place.
TEST(DebugModule, IsLoadedByTheFirstUseAndGivenUpWhenItDoesNotDo) {
    Install("libworking.so");
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

    // After one attempt, with nothing left behind.
    const std::pair<const char*, const char*> rows[] = {
        {"libmissing.so", ""},
        {"libwithout_export.so", "load\nunload\n"},
        {"libwithout_interface.so", "load\ninterface\nunload\n"},
        {"librefusing.so", "load\ninterface\nunload\n"},
        {"libfailing_late.so", "load\ninterface\nrelease\nunload\n"},
        {"librefusing_name.so", "load\ninterface\nname test\nrelease\nunload\n"},
    };
    for (const auto& [module, log] : rows) {
        Install(module);
        CVDebug debug(nullptr);
        EXPECT_EQ(debug.SetModuleName("test"), 0) << module;
        EXPECT_EQ(debug.SetModuleName("again"), 0) << module;
        EXPECT_EQ(TakeModuleLog(), log) << module;
    }
}
