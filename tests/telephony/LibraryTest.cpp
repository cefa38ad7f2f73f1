// The binding, with a library that is missing, lacks a function, and is whole.
#include "tests/telephony/TelephonyTest.h"

#include "telephony/TapiLibrary.h"

namespace {

using CLibraryTest = CTelephonyTest;

TEST_F(CLibraryTest, IsLookedForByEveryCallAndLoadedOnce) {
    CVTapiLibrary library;
    m_service.missing = "library";
    EXPECT_EQ(library.Load(), 0);
    EXPECT_EQ(CVTapi::LoadTapi(), 0);
    EXPECT_EQ(library.lineHold(7u), E_TAPI_NOLIBRARY);

    m_service.missing = "lineGetCountry";
    EXPECT_EQ(library.lineGetCountry(0u, 0u, nullptr), E_TAPI_FAILED);
    EXPECT_EQ(library.lineHold(7u), 1000);
    EXPECT_EQ(library.Load(), 1);
    EXPECT_EQ(m_service.loads, 1);
    library.Unload();
    library.Unload();
    EXPECT_EQ(m_service.loads, 0);
    EXPECT_EQ(library.lineHold(8u), 1001);
    EXPECT_EQ(Take(), "lineHold 7\nlineHold 8\n");
}

} // namespace
