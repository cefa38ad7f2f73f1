// A modem opened by its name: the steps, what each one's failure gives back, and the end.
#include "tests/telephony/TelephonyTest.h"

#include "common/UniqueHandle.h"
#include "modem/Modem.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Wait.h"
#include "tests/support/PseudoTerminal.h"

namespace {

constexpr char NAME[] = "M/dev/modem";
constexpr char PATH[] = "/dev/modem";

class COpenDeviceTest : public CTelephonyTest {
  protected:
    void SetUp() override {
        CTelephonyTest::SetUp();
        Offer({{NAME}});
        FakeTapi()->fill = [this, offer = FakeTapi()->fill](const std::string& call,
                                                            LPVOID record) {
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

    HANDLE m_hPort = nullptr;
    DWORD m_dwIdentifierSize = sizeof(DWORD);
};

TEST_F(COpenDeviceTest, FailuresGiveBackWhatTheyTookAndSayWhy) {
    const struct {
        const char* function;
        LONG status;
        const char* trace;
        const char* given; // back to the service
        DWORD error;
    } ROWS[] = {
        {"lineOpen", LINEERR_OPERATIONFAILED, "LineOpen Failed", "", ERROR_GEN_FAILURE},
        {"lineMakeCall", LINEERR_INUSE, "LineMakeCall Failed", "lineClose 12\n", ERROR_BUSY},
        {"lineMakeCall", LINEERR_ALLOCATED, "LineMakeCall Failed", "lineClose 12\n",
         ERROR_ACCESS_DENIED},
        {"lineGetID", LINEERR_NOMEM, "LineGetID Failed", "lineDrop 13 null 0\nlineClose 12\n",
         ERROR_GEN_FAILURE},
        // Results that are neither success nor failure.
        {"lineSetStatusMessages", 5, "LineOpen Failed", "lineClose 12\n", ERROR_GEN_FAILURE},
        {"lineGetID", 5, "LineGetID Failed", "lineDrop 13 null 0\nlineClose 12\n",
         ERROR_GEN_FAILURE},
    };
    CVModem modem;
    for (const auto& row : ROWS) {
        SCOPED_TRACE(row.trace);
        Fails(row.function, row.status);
        EXPECT_FALSE(modem.OpenDevice(NAME));
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_FALSE(modem.IsOpen());
        EXPECT_NE(TakeTrace().find("8 CVModem::OpenDevice() - " + std::string(row.trace) + " - " +
                                   NAME + '\n'),
                  std::string::npos);
        const std::string calls = TakeCalls();
        EXPECT_NE(calls.find(row.given), std::string::npos) << calls;
        EXPECT_EQ(modem.GetDevicePath(), row.function == std::string("lineGetID") ? "" : PATH);
    }
    m_dwIdentifierSize = sizeof(DWORD) - 1;
    EXPECT_FALSE(modem.OpenDevice(NAME));
    EXPECT_TRUE(TakeCalls().ends_with("lineDrop 13 null 0\nlineClose 12\n"));
    // No handle, and one that is no port and stays as it is.
    m_dwIdentifierSize = sizeof(DWORD);
    const CUniqueHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    for (const HANDLE handle : {HANDLE{}, HANDLE{event}}) {
        m_hPort = handle;
        EXPECT_FALSE(modem.OpenDevice(NAME));
        EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
        EXPECT_FALSE(modem.IsOpen());
        EXPECT_TRUE(TakeCalls().ends_with("lineDrop 13 null 0\nlineClose 12\n"));
    }
    EXPECT_TRUE(SetEvent(event));
    EXPECT_FALSE(modem.OpenDevice("m/dev/modem"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(TakeCalls().find("lineOpen"), std::string::npos);
    EXPECT_TRUE(
        TakeTrace().ends_with("8 CVModem::OpenDevice() - Cannot Find Device - m/dev/modem\n\n"));
}

TEST_F(COpenDeviceTest, AModemIsAPortUntilItIsClosed) {
    CVModem modem;
    for (int round = 0; round < 2; ++round) {
        CPseudoTerminal device;
        m_hPort = CreateFileA(device.GetPath().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
        ASSERT_TRUE(modem.OpenDevice(NAME));
        EXPECT_NE(TakeCalls().find("lineMakeCall 12"), std::string::npos);
        EXPECT_TRUE(modem.IsOpen());
        EXPECT_TRUE(modem.SendString("AT\r"));
        EXPECT_TRUE(modem.Drain(10000));
        EXPECT_EQ(device.Read(100), "AT\r");
        modem.Close();
        EXPECT_FALSE(modem.IsOpen());
        EXPECT_EQ(TakeCalls(), "lineDrop 13 null 0\nlineClose 12\n");
        EXPECT_FALSE(CloseHandle(m_hPort)) << "the port closes it";
        modem.Close();
        EXPECT_EQ(TakeCalls(), "");
    }
}

} // namespace
