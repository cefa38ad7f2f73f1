#include "platform/Module.h"
#include "platform/Error.h"

#include <gtest/gtest.h>

#include <string>

TEST(Module, IsFoundByItsPublishedNameBesideTheProgramAndInItsLibraryFolder) {
    for (const char* name :
         {"WireletTestBeside.dll", "WIRELETTESTINSTALLED", "wirelettestbeside.x"}) {
        const HMODULE module = LoadLibraryA(name);
        ASSERT_NE(module, nullptr) << name;
        const auto answer =
            reinterpret_cast<int (*)()>(GetProcAddress(module, "WireletTestAnswer"));
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer(), 42);
        EXPECT_EQ(GetProcAddress(module, "NoSuchExport"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_FALSE(FreeLibrary(module)) << "given back once already";
        EXPECT_EQ(GetProcAddress(module, "WireletTestAnswer"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

TEST(Module, OtherNamesAreNotFound) {
    const std::string longName(5000, 'n');
    for (const char* name : {"", ".dll", "NoSuchModule.dll", "./wirelettestbeside.dll",
                             "/tmp/wirelettestbeside.dll", longName.c_str()}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(LoadLibraryA(name), nullptr) << name;
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    }
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
    int noModule = 0;
    for (const HMODULE module : {HMODULE{}, HMODULE{&noModule}}) {
        EXPECT_EQ(GetProcAddress(module, "malloc"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(FreeLibrary(module));
    }
}
