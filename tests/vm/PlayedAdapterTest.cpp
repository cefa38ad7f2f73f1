// What only an adapter that the test plays can do.
#include "tests/vm/PlayedAdapter.h"
#include "platform/Comm.h"
#include "platform/CommEvents.h"
#include "tests/vm/DriverTest.h"

namespace {

// It is the far end itself; at the other adapter's nothing happens.
constexpr Cable kPlayed = {"played", "/dev/ttyUSB1", kAdapter.farEnd};

} // namespace

class CPlayedAdapterTest : public CDriverTest {
  protected:
    using Adapter = CPlayedAdapter;

    // What has happened by the end of a wait during which the adapter has sent.
    DWORD WaitWhileSending(const std::string& bytes, BYTE status, BYTE lines) {
        DWORD events = 0;
        DWORD unused = 0;
        OVERLAPPED overlapped{};
        EXPECT_FALSE(WaitCommEvent(Port(), &events, &overlapped));
        std::thread sender([&] {
            usleep(100000);
            m_adapter.Send(bytes, status, lines);
        });
        EXPECT_TRUE(GetOverlappedResult(Port(), &overlapped, &unused, TRUE));
        sender.join();
        return events;
    }

    CPlayedAdapter m_adapter;
};
INSTANTIATE_TEST_SUITE_P(Cables, CPlayedAdapterTest, testing::Values(kPlayed), NameOfCable);

TEST_P(CPlayedAdapterTest, MovesCarrierErrsAndTakesNothing) {
    while (!m_serial->Open(GetParam().device))
        Sleep(50); // the driver takes a moment
    EXPECT_TRUE(SetCommMask(Port(), EV_RLSD | EV_ERR));
    EXPECT_EQ(WaitWhileSending("", 0, Adapter::kNoCarrier), EV_RLSD);
    EXPECT_EQ(WaitWhileSending("p", Adapter::kParityError, Adapter::kNoCarrier), EV_ERR);
    EXPECT_EQ(WaitWhileSending("", 0, Adapter::kLines), EV_RLSD);
    EXPECT_EQ(Read(1), "p");
    Reports();

    const struct {
        BYTE status;
        std::string bytes;
        std::string received;
        const char* report;
    } rows[] = {
        {Adapter::kParityError, "par", "par", "0x000004"},
        {Adapter::kFramingError, "fra", "fra", "0x000008"},
        {Adapter::kOverrun, "ove", "ove", "0x000002"},
        {Adapter::kBreak, {0}, "", "0x000010"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.report);
        m_adapter.Send("before ");
        m_adapter.Send(row.bytes, row.status);
        m_adapter.Send(" after");
        const std::string expected = "before " + row.received + " after";
        EXPECT_EQ(Read(static_cast<DWORD>(expected.size())), expected);
        EXPECT_EQ(Reports(), Texts{std::string("CVSerial::Read() - Comm error detected ") +
                                   row.report + '\n'});
    }

    EXPECT_EQ(Write(std::string(3000, 't')), 3000u);
    Sleep(500);
    m_adapter.Send("read on");
    EXPECT_EQ(Read(7), "read on");
    ExpectClosing(1);
}
