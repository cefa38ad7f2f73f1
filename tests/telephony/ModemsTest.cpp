// How modems are found among the devices of a service that may lie about them.
#include "tests/telephony/TelephonyTest.h"

#include "telephony/TapiRecord.h"

namespace {

class CModemsTest : public CTelephonyTest {
  protected:
    // The name, or what stands in its place.
    std::string Next(BOOL bRestart, DWORD dwSize = 260) {
        std::string name(dwSize + 1, '#');
        const LONG status = m_tapi->IterateModems(name.data(), dwSize, bRestart);
        EXPECT_EQ(name.back(), '#');
        return status == 0 ? name.c_str() : status == E_TAPI_NODEVICE ? "none" : "failed";
    }
    // The device's number, or the failure.
    LONG Find(const char* name) {
        DWORD identifier = 99;
        const LONG status = m_tapi->LineDeviceNameToID(name, &identifier);
        EXPECT_EQ(identifier == 99, status != 0);
        return status != 0 ? status : static_cast<LONG>(identifier);
    }
};

TEST_F(CModemsTest, AreListedOneAfterTheOther) {
    Offer({{"no voice", 0},
           {"Modem on /dev/ttyUSB0"},
           {"no data", 1, 4},
           {"no calls", 1, 16, 0},
           {"second"}});
    EXPECT_EQ(Next(TRUE), "Modem on /dev/ttyUSB0");
    EXPECT_EQ(Next(FALSE), "second");
    EXPECT_EQ(Next(FALSE), "none");
    EXPECT_EQ(Next(FALSE), "none");
    EXPECT_EQ(Next(TRUE, 6), "Modem");
    EXPECT_EQ(Next(TRUE, 1), "");
    EXPECT_EQ(Next(FALSE, 0)[0], '#');

    m_service.results["lineGetDevCaps"] = {LINEERR_NODEVICE};
    EXPECT_EQ(Next(TRUE), "Modem on /dev/ttyUSB0");
    EXPECT_NE(Take().find("! IterateModems() - MLineGetDevCaps() failed"), std::string::npos);
}

TEST_F(CModemsTest, AreNotBelievedWhatLiesOutsideTheirRecords) {
    constexpr DWORD kSize = 1240;
    Offer({{"", 1, 16, 8, 0xFFFFFFFF, 240},
           {"", 1, 16, 8, 240, 0xFFFFFFFF},
           {"", 1, 16, 8, 1001, 240},
           {"", 1, 16, 8, 1, kSize},
           {"", 1, 16, 8, 5, 0},
           {std::string(999, 'x'), 1, 16, 8, 999, 240},
           {"*last", 1, 16, 8, 2, kSize - 2}});
    EXPECT_EQ(Next(TRUE, 2000), std::string(999, 'x')); // without an end
    EXPECT_EQ(Next(FALSE), "");
    EXPECT_EQ(Next(FALSE), "none");

    CResult<LINEDEVCAPS> caps;
    ASSERT_EQ(m_tapi->LineGetDevCaps(6, caps), 0);
    EXPECT_EQ(DeviceTextOf(*caps.record), "last");
}

TEST_F(CModemsTest, AreFoundByTheirExactNames) {
    Offer({{"one", 0}, {"One"}, {"One too"}});
    for (const char* const name : {"ONE", "", "On", "one "})
        EXPECT_EQ(Find(name), E_TAPI_NODEVICE);
    EXPECT_EQ(Find("one"), 0);
    EXPECT_EQ(Find("One"), 1);
}

TEST_F(CModemsTest, HaveNoRegistryKeys) {
    HKEY key = nullptr;
    EXPECT_EQ(m_tapi->GetModemRegKey(9999, &key), E_TAPI_FAILED);
}

} // namespace
