// How modems are found among the devices of a service that may lie about them.
#include "tests/telephony/TelephonyTest.h"

#include "platform/Version.h"
#include "telephony/TapiRecord.h"

namespace {

class CModemsTest : public CTelephonyTest {
  protected:
    std::string Next(BOOL bRestart, DWORD dwSize = 260) {
        std::string name(dwSize + 1, '#');
        const LONG status = m_tapi->IterateModems(name.data(), dwSize, bRestart);
        EXPECT_EQ(name.back(), '#');
        return status == 0 ? name.c_str() : std::to_string(status);
    }
};

const std::string NO_DEVICE = std::to_string(E_TAPI_NODEVICE);
const std::string NONE_FOUND = "8 CVTapi::IterateModems() - No Tapi devices found\n\n";

TEST_F(CModemsTest, AreListedOneAfterTheOther) {
    Offer({{"no voice", 0},
           {"Modem on /dev/ttyUSB0"},
           {"no data", 1, 4},
           {"no calls", 1, 16, 0},
           {"second"}});
    EXPECT_EQ(Next(TRUE), "Modem on /dev/ttyUSB0");
    EXPECT_EQ(Next(FALSE), "second");
    EXPECT_EQ(TakeTrace(), "");
    EXPECT_EQ(Next(FALSE), NO_DEVICE);
    EXPECT_EQ(Next(FALSE), NO_DEVICE);
    EXPECT_EQ(TakeTrace(), NONE_FOUND + NONE_FOUND);
    EXPECT_EQ(Next(TRUE, 6), "Modem");
    EXPECT_EQ(Next(TRUE, 1), "");
    EXPECT_EQ(Next(FALSE, 0)[0], '#');

    Fails("lineGetDevCaps", LINEERR_NODEVICE);
    TakeTrace();
    EXPECT_EQ(Next(TRUE), "Modem on /dev/ttyUSB0");
    EXPECT_EQ(TakeTrace(),
              "1 CVTapi::MLineGetDevCaps() - lineGetDevCaps() failed returning 0x80000042\n"
              "1 CVTapi::IterateModems() - MLineGetDevCaps() failed returning 0x80000042\n\n");
}

TEST_F(CModemsTest, AreNotBelievedWhatLiesOutsideTheirRecords) {
    const DWORD SIZE = 1240;
    Offer({{"", 1, 16, 8, 0xFFFFFFFF, 240},
           {"", 1, 16, 8, 240, 0xFFFFFFFF},
           {"", 1, 16, 8, 1001, 240},
           {"", 1, 16, 8, 1, SIZE},
           {"", 1, 16, 8, 5, 0},
           {std::string(999, 'x'), 1, 16, 8, 999, 240},
           {"*last", 1, 16, 8, 2, SIZE - 2}});
    EXPECT_EQ(Next(TRUE, 2000), std::string(999, 'x')); // without an end
    EXPECT_EQ(Next(FALSE), "");
    EXPECT_EQ(Next(FALSE), NO_DEVICE);

    CResult<LINEDEVCAPS> caps;
    ASSERT_EQ(m_tapi->LineGetDevCaps(6, caps), 0);
    EXPECT_EQ(DeviceTextOf(*caps.Get()), "last");
    CResult<LINEDEVCAPS> lying;
    ASSERT_EQ(m_tapi->LineGetDevCaps(0, lying), 0);
    EXPECT_FALSE(LineNameOf(*lying.Get()));
}

TEST_F(CModemsTest, AreFoundByTheirExactNames) {
    Offer({{"one", 0}, {"One"}, {"One too"}});
    DWORD identifier = 99;
    for (const char* const name : {"one ", "ONE", "", "On"})
        EXPECT_EQ(m_tapi->LineDeviceNameToID(name, &identifier), E_TAPI_NODEVICE);
    EXPECT_EQ(identifier, 99u);
    EXPECT_TRUE(
        TakeTrace().starts_with("1 CVTapi::LineDeviceNameToID() - Device \"one \" not found\n\n"));
    EXPECT_EQ(m_tapi->LineDeviceNameToID("one", &identifier), 0);
    EXPECT_EQ(identifier, 0u);
    EXPECT_EQ(m_tapi->LineDeviceNameToID("One", &identifier), 0);
    EXPECT_EQ(identifier, 1u);
    EXPECT_EQ(TakeTrace(), "8 CVTapi::LineDeviceNameToID() - Device \"one\" = 0\n\n"
                           "8 CVTapi::LineDeviceNameToID() - Device \"One\" = 1\n\n");
    EXPECT_EQ(m_tapi->PhoneDeviceNameToID("One too", &identifier), 0);
    EXPECT_EQ(identifier, 2u);
    EXPECT_EQ(m_tapi->PhoneDeviceNameToID("none", &identifier), E_TAPI_NODEVICE);
    EXPECT_EQ(TakeTrace(), "8 CVTapi::PhoneDeviceNameToID() - Device \"One too\" = 2\n\n"
                           "1 CVTapi::PhoneDeviceNameToID() - Device \"none\" not found\n");
}

TEST_F(CModemsTest, HaveTheirRegistryKeys) {
    HKEY key = nullptr;
    EXPECT_EQ(m_tapi->GetModemRegKey(9999, &key), E_TAPI_FAILED);
    EXPECT_EQ(TakeTrace(), "1 CVTapi::GetModemRegKey() - RegOpenKeyEx() failed returning 2\n\n");
    // Whether there is a first one is the machine's matter.
    HKEY same = nullptr;
    const LONG status = RegOpenKeyExA(HKEY_LOCAL_MACHINE,
                                      "System\\CurrentControlSet\\Control\\Class\\"
                                      "{4D36E96D-E325-11CE-BFC1-08002BE10318}\\0000",
                                      0, KEY_READ, &same);
    EXPECT_EQ(m_tapi->GetModemRegKey(0, &key), status == 0 ? 0 : E_TAPI_FAILED);
    EXPECT_EQ(RegCloseKey(same), RegCloseKey(key));
}

} // namespace
