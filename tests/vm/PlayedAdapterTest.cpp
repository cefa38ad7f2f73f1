// What only an adapter that the test plays can do.
#include "tests/vm/PlayedAdapter.h"
#include "platform/CommEvents.h"
#include "tests/vm/SerialTest.h"

namespace {

// It is the far end itself; at the other adapter's nothing happens.
constexpr Cable PLAYED = {"played", "/dev/ttyUSB1", ADAPTER.farEnd};

} // namespace

class CPlayedAdapterTest : public CSerialTest {
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
INSTANTIATE_TEST_SUITE_P(Cables, CPlayedAdapterTest, testing::Values(PLAYED), NameOfCable);

TEST_P(CPlayedAdapterTest, MovesCarrierErrsAndTakesNothing) {
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_serial->Open(GetParam().device); }));
    EXPECT_TRUE(SetCommMask(Port(), EV_RLSD | EV_ERR));
    EXPECT_EQ(WaitWhileSending("", 0, Adapter::NO_CARRIER), EV_RLSD);
    EXPECT_EQ(WaitWhileSending("p", Adapter::PARITY_ERROR, Adapter::NO_CARRIER), EV_ERR);
    EXPECT_EQ(WaitWhileSending("", 0, Adapter::LINES), EV_RLSD);
    EXPECT_EQ(Read(1), "p");
    m_log.Take();

    const struct {
        BYTE status;
        std::string bytes;
        std::string received;
        const char* report;
    } rows[] = {
        {Adapter::PARITY_ERROR, "par", "par", "0x000004"},
        {Adapter::FRAMING_ERROR, "fra", "fra", "0x000008"},
        {Adapter::OVERRUN, "ove", "ove", "0x000002"},
        {Adapter::BREAK, {0}, "", "0x000010"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.report);
        m_adapter.Send("before ");
        m_adapter.Send(row.bytes, row.status);
        m_adapter.Send(" after");
        const std::string expected = "before " + row.received + " after";
        EXPECT_EQ(Read(expected.size()), expected);
        EXPECT_EQ(m_log.Take(),
                  std::vector<std::string>{std::string("CVSerial::Read() - Comm error detected ") +
                                           row.report + '\n'});
    }

    EXPECT_EQ(Write(std::string(3000, 't')), 3000u);
    m_pump.RunFor(std::chrono::milliseconds(500));
    m_adapter.Send("read on");
    EXPECT_EQ(Read(7), "read on");
    const auto start = std::chrono::steady_clock::now();
    m_serial->Close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, GUARD);
}
