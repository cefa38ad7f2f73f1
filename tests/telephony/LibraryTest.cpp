// The binding, with libraries that are missing, lacking and changing.
#include "telephony/Tapi.h"
#include "telephony/TapiLibrary.h"
#include "tests/telephony/FakeTapi.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

void Install(const std::string& name) {
    const std::filesystem::path beside =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libtapi32.so";
    std::filesystem::remove(beside);
    if (!name.empty())
        std::filesystem::create_symlink(std::filesystem::path(MODULE_FOLDER) / name, beside);
}

// Each function of the list, called with nothing: how many say that they are not there.
template <class Function> struct SCall;
template <class... Parameters> struct SCall<LONG(Parameters...)> {
    template <class Member> static LONG With(Member member) { return member(Parameters{}...); }
};
int CountAbsent(CVTapiLibrary& library, LONG lStatus) {
    int count = 0;
#define CALL_MEMBER(result, name, parameters)                                                      \
    count += SCall<result parameters>::With(                                                       \
                 [&](auto... nothing) { return library.name(nothing...); }) == lStatus;
    WIRELET_TAPI_FUNCTIONS(CALL_MEMBER)
    return count;
}

// One test, as all of it changes the one folder of the program: two at a time would take each
// other's library away.
TEST(TapiLibrary, IsMissingThenLackingThenWholeAndLoadedAgainAfterUnloading) {
    CVTapiLibrary library;
    FakeTapi()->calls.clear();
    Install("");
    EXPECT_EQ(library.Load(), 0);
    EXPECT_EQ(CVTapi::LoadTapi(), 0);
    EXPECT_EQ(CountAbsent(library, E_TAPI_NOLIBRARY), 62);

    // It is looked for again, and every function each time.
    Install("libtapi32_lacking.so");
    EXPECT_EQ(library.lineGetCountry(0u, 0u, nullptr), E_TAPI_FAILED);
    EXPECT_EQ(CountAbsent(library, E_TAPI_FAILED), 1);
    EXPECT_EQ(FakeTapi()->calls.size(), 61u);
    library.Unload();

    Install("service/libtapi32.so");
    EXPECT_NE(library.Load(), 0);
    EXPECT_EQ(library.Load(), 1);
    EXPECT_EQ(FakeTapi()->loads, 1);
    library.Unload();
    library.Unload();
    EXPECT_EQ(FakeTapi()->loads, 0);
    FakeTapi()->results["lineHold"] = {LINEERR_INVALCALLHANDLE};
    EXPECT_EQ(library.lineHold(7), LINEERR_INVALCALLHANDLE);
    EXPECT_EQ(FakeTapi()->calls.back(), "lineHold 7");
    EXPECT_EQ(FakeTapi()->loads, 1);
}

} // namespace
