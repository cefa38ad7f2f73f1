// A modem opened by its name: the steps, what each one's failure gives back, and the end.
#include "tests/telephony/TelephonyTest.h"

#include "modem/Modem.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Wait.h"
#include "tests/support/PseudoTerminal.h"

namespace {

class COpenDeviceTest : public CTelephonyTest {
  protected:
    void SetUp() override {
        Offer({{"M/dev/modem"}});
        m_service.fill = [this, offer = m_service.fill](const std::string& call, LPVOID record) {
            if (!call.starts_with("lineGetID"))
                return offer(call, record);
            auto& identifier = *static_cast<VARSTRING*>(record);
            identifier.dwStringOffset = sizeof identifier + 1;
            identifier.dwStringSize = m_dwIdentifierSize;
            const auto handle = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(m_hPort));
            std::memcpy(static_cast<BYTE*>(record) + identifier.dwStringOffset, &handle,
                        sizeof handle);
            return LONG{0};
        };
    }

    CVModem m_modem;
    HANDLE m_hPort = nullptr;
    DWORD m_dwIdentifierSize = sizeof(DWORD);
};

TEST_F(COpenDeviceTest, FailuresGiveBackWhatTheyTookAndSayWhy) {
    const std::string closed = "lineClose 12\n", dropped = "lineDrop 13 null 0\n" + closed;
    const struct {
        std::string function;
        LONG status;
        std::string step;
        std::string given; // back to the service
        DWORD error;
    } rows[] = {
        {"lineInitialize", LINEERR_NODRIVER, "Cannot Find Device", "", ERROR_NOT_SUPPORTED},
        {"lineMakeCall", LINEERR_INUSE, "LineMakeCall Failed", closed, ERROR_BUSY},
        // Results that are neither success nor failure.
        {"lineSetStatusMessages", 5, "LineOpen Failed", closed, ERROR_GEN_FAILURE},
        {"lineGetID", 5, "LineGetID Failed", dropped, ERROR_GEN_FAILURE},
        // A handle that is not whole, and one that is no port's.
        {"", 3, "LineGetID Failed", dropped, ERROR_GEN_FAILURE},
        {"", 4, "LineGetID Failed", dropped, ERROR_GEN_FAILURE},
    };
    m_hPort = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    for (const auto& row : rows) {
        if (row.function.empty())
            m_dwIdentifierSize = static_cast<DWORD>(row.status);
        else
            m_service.results[row.function] = {row.status};
        EXPECT_FALSE(m_modem.OpenDevice("M/dev/modem"));
        EXPECT_EQ(GetLastError(), row.error) << row.step;
        EXPECT_FALSE(m_modem.IsOpen());
        const std::string record = Take();
        EXPECT_NE(
            record.find("- CVModem::OpenDevice() - " + row.step + " - M/dev/modem\n\n" + row.given),
            std::string::npos)
            << record;
        const bool isRefused = row.step.starts_with("LineOpen") || row.step.starts_with("LineMake");
        EXPECT_EQ(m_modem.GetDevicePath(), isRefused ? "/dev/modem" : "");
    }
    EXPECT_TRUE(CloseHandle(m_hPort)) << "what is no port stays as it is";
    EXPECT_FALSE(m_modem.OpenDevice("m/dev/modem"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Take().find("lineOpen"), std::string::npos);
}

TEST_F(COpenDeviceTest, AModemIsAPortUntilItIsClosed) {
    for (int round = 0; round < 2; ++round) {
        CPseudoTerminal device;
        m_hPort = CreateFileA(device.GetPath().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
        ASSERT_TRUE(m_modem.OpenDevice("M/dev/modem"));
        EXPECT_TRUE(m_modem.IsOpen());
        Take();
        m_modem.Close();
        EXPECT_FALSE(m_modem.IsOpen());
        EXPECT_FALSE(CloseHandle(m_hPort)) << "the port closes it";
        m_modem.Close();
        EXPECT_EQ(Take(), "lineDrop 13 null 0\nlineClose 12\n");
    }
}

} // namespace
