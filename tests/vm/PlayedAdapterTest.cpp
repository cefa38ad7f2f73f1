// What only an adapter that the test plays can do.
#include "tests/vm/PlayedAdapter.h"
#include "CORE/VXSerial/Lib/ISerial.h"
#include "common/InterfacePtr.h"
#include "platform/Comm.h"
#include "platform/CommEvents.h"
#include "tests/diagnostics/ReportLog.h"
#include "tests/support/Pump.h"
#include "tests/vm/Cable.h"

#include <optional>

namespace {

constexpr char DEVICE[] = "/dev/ttyUSB1";

struct Error {
    BYTE status;
    std::string bytes;
    std::string received;
    const char* report;
};

} // namespace

class CPlayedAdapterTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { s_adapter.emplace(); }
    static void TearDownTestSuite() { s_adapter.reset(); }

    inline static std::optional<CPlayedAdapter> s_adapter;
};

// First: what the other one leaves behind keeps the driver busy for half a minute.
TEST_F(CPlayedAdapterTest, CarrierAndErrorsEndAWait) {
    CPump pump;
    HANDLE port = INVALID_HANDLE_VALUE;
    ASSERT_TRUE(pump.RunUntil([&] {
        port = CreateFileA(DEVICE, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           FILE_FLAG_OVERLAPPED, nullptr);
        return port != INVALID_HANDLE_VALUE;
    }));
    EXPECT_TRUE(SetCommMask(port, EV_RLSD | EV_ERR));
    const auto eventOf = [&](const std::string& bytes, BYTE status, BYTE lines) {
        DWORD events = 0;
        DWORD unused = 0;
        OVERLAPPED overlapped{};
        EXPECT_FALSE(WaitCommEvent(port, &events, &overlapped));
        std::thread mover([&] {
            usleep(100000);
            s_adapter->Send(bytes, status, lines);
        });
        EXPECT_TRUE(GetOverlappedResult(port, &overlapped, &unused, TRUE));
        mover.join();
        return events;
    };
    EXPECT_EQ(eventOf("", 0, CPlayedAdapter::NO_CARRIER), EV_RLSD);
    EXPECT_EQ(eventOf("p", CPlayedAdapter::PARITY_ERROR, CPlayedAdapter::NO_CARRIER), EV_ERR);
    EXPECT_EQ(eventOf("", 0, CPlayedAdapter::LINES), EV_RLSD);
    EXPECT_TRUE(CloseHandle(port));
}

TEST_F(CPlayedAdapterTest, ErrorsAndADeviceThatTakesNothing) {
    CPlayedAdapter& adapter = *s_adapter;
    CPump pump;
    CReportLog log;
    CInterfacePtr<ISerial> serial;
    ASSERT_EQ(CreateSerial(serial.Receive(), nullptr), S_OK);
    ASSERT_TRUE(pump.RunUntil([&] { return serial->Open(DEVICE); }));
    log.Take();
    std::string received;
    const auto read = [&] {
        char some[256];
        received.append(some, serial->Read(some, sizeof some));
    };
    for (const Error& row : {Error{CPlayedAdapter::PARITY_ERROR, "par", "par", "0x000004"},
                             Error{CPlayedAdapter::FRAMING_ERROR, "fra", "fra", "0x000008"},
                             Error{CPlayedAdapter::OVERRUN, "ove", "ove", "0x000002"},
                             Error{CPlayedAdapter::BREAK, {0}, "", "0x000010"}}) {
        SCOPED_TRACE(row.report);
        received.clear();
        adapter.Send("before ");
        adapter.Send(row.bytes, row.status);
        adapter.Send(" after");
        EXPECT_TRUE(pump.RunUntil([&] {
            read();
            return received.ends_with(" after");
        }));
        EXPECT_EQ(received, "before " + row.received + " after");
        EXPECT_EQ(log.Take(),
                  std::vector<std::string>{std::string("CVSerial::Read() - Comm error detected ") +
                                           row.report + '\n'});
    }

    const std::string typed(3000, 't');
    EXPECT_EQ(serial->Write(typed.data(), 3000), 3000u);
    pump.RunFor(std::chrono::milliseconds(500));
    adapter.Send("read on");
    received.clear();
    EXPECT_TRUE(pump.RunUntil([&] {
        read();
        return received == "read on";
    }));
    const auto start = std::chrono::steady_clock::now();
    serial->Close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, GUARD);
}
