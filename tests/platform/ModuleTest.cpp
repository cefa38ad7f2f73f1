#include "platform/Module.h"
#include "platform/Error.h"

#include <gtest/gtest.h>

#include <string>

TEST(Module, IsFoundByItsPublishedNameBesideTheProgramAndInItsLibraryFolder) {
    EXPECT_EQ(LoadLibraryA("./wirelettestbeside.dll"), nullptr) << "a path is no name";
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    for (const char* name :
         {"WireletTestBeside.dll", "WIRELETTESTINSTALLED", "wirelettestbeside.x"}) {
        const HMODULE module = LoadLibraryA(name);
        ASSERT_NE(module, nullptr) << name;
        const auto answer =
            reinterpret_cast<int (*)()>(GetProcAddress(module, "WireletTestAnswer"));
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer(), 42);
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_FALSE(FreeLibrary(module)) << "given back once already";
    }
}
