// A device that takes nothing: with RTS/CTS flow control, its CTS is low.
#include "tests/vm/DriverSession.h"
#include "tests/vm/Holder.h"
#include "tests/vm/SerialTest.h"

namespace {

// Starts the flow control while the chip is looped back, with its RTS, and so CTS, low. Out of the
// loop the chip's CTS is high again, but its emulation tells the driver of no change.
void LowerCts(CHolder& holder, const std::function<void()>& startFlowControl) {
    holder.SetLines(TIOCM_LOOP | TIOCM_OUT2 | TIOCM_DTR);
    startFlowControl();
    holder.SetLines(TIOCM_OUT2 | TIOCM_DTR);
}

} // namespace

class CFlowTest : public CSerialTest {};
INSTANTIATE_TEST_SUITE_P(Cables, CFlowTest, testing::Values(UART), NameOfCable);

TEST_P(CFlowTest, NothingIsLostAndClosingDoesNotWait) {
    const auto threads = CountThreads();
    CHolder holder(GetParam().device);
    Open();
    m_serial->SetDataFormat(115200, NOPARITY, 8, ONESTOPBIT);
    const std::string bytes(8000, 'w');
    const auto block = [&] {
        LowerCts(holder, [this] { EXPECT_TRUE(m_serial->SetFlowControl(_FLOW_RTSCTS)); });
        Write(bytes);
        m_pump.RunFor(std::chrono::milliseconds(500));
        EXPECT_NE(m_serial->GetLineStatus() & LINE_TXPENDING, 0u);
        m_farEnd.Send("heard all the same");
        EXPECT_EQ(Read(18), "heard all the same");
        EXPECT_EQ(m_farEnd.GetReceived(), "");
    };
    block();
    m_serial->SetFlowControl(_FLOW_NONE);
    EXPECT_TRUE(FarEndGets(bytes));

    block();
    EXPECT_TRUE(m_serial->Flush(_QUE_TX));
    m_serial->SetFlowControl(_FLOW_NONE);
    Write("after the flush");
    EXPECT_TRUE(FarEndGets("after the flush"));

    block();
    ExpectClosing(threads);
}

class CStuckTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CStuckTest, testing::Values(ACM), NameOfCable);

// Whose driver cannot discard what it was given.
TEST_P(CStuckTest, TheEndDoesNotWait) {
    StartOnCable();
    m_pump.Remove(*m_farEnd);
    Type(std::string(200000, 't'));
    EXPECT_TRUE(Fulfils("the keys", [this] { return m_terminal.IsAllSent(); }));
    m_pump.RunFor(std::chrono::milliseconds(300));
    Type(kAltF4);
    EXPECT_TRUE(EndsSoon());
    EXPECT_TRUE(Ends());
    m_pump.Add(*m_farEnd);
}

class CFlowSession : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CFlowSession, testing::Values(UART), NameOfCable);

TEST_P(CFlowSession, TheScreenGoesOn) {
    CHolder holder(GetParam().device);
    StartOnCable();
    const auto choose = [this](const char* key, const char* answer) {
        Type(kF6);
        EXPECT_TRUE(Shows("Flow Control: "));
        Type(key);
        EXPECT_TRUE(Shows(answer));
    };
    const std::string typed(20000, 't');
    LowerCts(holder, [&] { choose("2", "Set to Hardware"); });
    Type(typed);
    m_farEnd->Send("the device goes on");
    EXPECT_TRUE(Shows("the device goes on"));
    EXPECT_EQ(m_farEnd->GetReceived(), "");
    choose("1", "Set to None");
    EXPECT_TRUE(FarEndGets(typed));

    LowerCts(holder, [&] { choose("2", "Set to Hardware"); });
    Type(typed);
    m_farEnd->Send("\x1B[2Jand on");
    EXPECT_TRUE(Shows("and on"));
    Type(kAltF4);
    EXPECT_TRUE(EndsSoon());
    EXPECT_TRUE(Ends());
}
