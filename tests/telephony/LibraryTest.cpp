// The binding, with libraries that are missing, lacking and changing.
#include "telephony/Tapi.h"
#include "telephony/TapiService.h"
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

// Each function of the list, called with nothing.
template <class Function> struct SCall;
template <class... Parameters> struct SCall<LONG(Parameters...)> {
    template <class Member> static LONG With(Member member) { return member(Parameters{}...); }
};

std::map<std::string, LONG> CallAll(CVTapiLibrary& library) {
    std::map<std::string, LONG> results;
#define CALL_MEMBER(result, name, parameters)                                                      \
    results[#name] =                                                                               \
        SCall<result parameters>::With([&](auto... nothing) { return library.name(nothing...); });
    WIRELET_TAPI_FUNCTIONS(CALL_MEMBER)
    return results;
}

void ExpectAll(const std::map<std::string, LONG>& results, LONG lStatus) {
    EXPECT_EQ(results.size(), 62u);
    for (const auto& [name, result] : results)
        EXPECT_EQ(result, lStatus) << name;
}

TEST(TapiLibrary, IsMissingOrLacking) {
    CVTapiLibrary library;
    Install("");
    EXPECT_EQ(library.Load(), 0);
    EXPECT_EQ(CVTapi::LoadTapi(), 0);
    ExpectAll(CallAll(library), E_TAPI_NOLIBRARY);

    // It is looked for again, and every function each time.
    Install("libtapi32_empty.so");
    ExpectAll(CallAll(library), E_TAPI_FAILED);
    EXPECT_EQ(library.Load(), 1);
    library.Unload();

    Install("libtapi32_lacking.so");
    const auto isStarting = [](const std::string& name) {
        return name.ends_with("Initialize") || name.ends_with("Shutdown");
    };
    const std::map<std::string, LONG> lacking = CallAll(library);
    EXPECT_EQ(FakeTapi()->calls.size(), 61u);
    for (const auto& [name, result] : lacking)
        if (!isStarting(name)) {
            EXPECT_EQ(result < 0, name == "lineGetCountry") << name;
        }
    EXPECT_EQ(lacking.at("lineGetCountry"), E_TAPI_FAILED);
}

TEST(TapiLibrary, IsLoadedOnceAndAgainAfterUnloading) {
    Install("service/libtapi32.so");
    CVTapiLibrary library;
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
