// Control lines and what is wrong with received bytes.
#include "tests/vm/Holder.h"
#include "tests/vm/SerialTest.h"

class CLinesTest : public CSerialTest {};
INSTANTIATE_TEST_SUITE_P(Cables, CLinesTest, testing::Values(ADAPTER, UART), NameOfCable);

TEST_P(CLinesTest, DtrIsUpWhileOpen) {
    CHolder holder(GetParam().device);
    holder.SetLines(TIOCM_RTS);
    Moves();
    Open();
    EXPECT_EQ(Moves(), "+DTR");
    EXPECT_EQ(m_serial->GetLineStatus() & (LINE_DTR | LINE_RTS), LINE_DTR);
    m_serial->Close();
    EXPECT_EQ(Moves(), "-DTR");
}

TEST_P(CLinesTest, LinesMoveAsTold) {
    Open();
    const auto set = [this](DWORD line, BOOL state) {
        EXPECT_TRUE(m_serial->SetLine(line, state));
        return Moves();
    };
    const auto status = [this] { return m_serial->GetLineStatus() & (LINE_DTR | LINE_RTS); };
    Moves();
    EXPECT_EQ(set(LINE_RTS, TRUE), "");
    EXPECT_EQ(status(), LINE_DTR | LINE_RTS);
    EXPECT_EQ(set(LINE_DTR, FALSE), "-DTR");
    EXPECT_EQ(status(), LINE_RTS);
    EXPECT_EQ(set(LINE_RTS, FALSE), "-RTS");
    EXPECT_EQ(status(), 0u);
    // Another format moves no line.
    EXPECT_TRUE(m_serial->SetDataFormat(4800, EVENPARITY, 7, ONESTOPBIT));
    EXPECT_EQ(Moves(), "");
    EXPECT_EQ(set(LINE_DTR, TRUE), "+DTR");
    EXPECT_EQ(set(LINE_RTS, TRUE), "+RTS");
    // The far end's lines are up on both.
    EXPECT_EQ(m_serial->GetLineStatus(), LINE_DTR | LINE_RTS | LINE_CTS | LINE_DSR | LINE_DCD);
}

class CUartTest : public CSerialTest {};
INSTANTIATE_TEST_SUITE_P(Cables, CUartTest, testing::Values(UART), NameOfCable);

// Looped back, the chip's outputs are its inputs.
TEST_P(CUartTest, EachLineIsSeen) {
    struct Row {
        int output;
        DWORD input;
    };
    CHolder holder(GetParam().device);
    Open();
    for (const Row& row : {Row{TIOCM_RTS, LINE_CTS}, Row{TIOCM_DTR, LINE_DSR},
                           Row{TIOCM_OUT1, LINE_RING}, Row{TIOCM_OUT2, LINE_DCD}, Row{0, 0}}) {
        holder.SetLines(TIOCM_LOOP | row.output);
        EXPECT_EQ(m_serial->GetLineStatus() & ~(LINE_DTR | LINE_RTS), row.input);
    }
    // Without carrier, and without CLOCAL, the port opens all the same.
    m_serial->Close();
    termios settings = holder.GetSettings();
    settings.c_cflag &= ~static_cast<tcflag_t>(CLOCAL);
    holder.ApplySettings(settings);
    holder.SetLines(TIOCM_LOOP);
    Open();
    holder.SetLines(TIOCM_DTR | TIOCM_RTS | TIOCM_OUT2);
}

TEST_P(CUartTest, ABreakIsReportedOnceAndAddsNoByte) {
    Open();
    m_farEnd.Send("before");
    EXPECT_EQ(Read(6), "before");
    m_log.Take();
    AskHost("break");
    m_farEnd.Send("after");
    EXPECT_EQ(Read(5), "after");
    EXPECT_EQ(m_log.Take(),
              std::vector<std::string>{"CVSerial::Read() - Comm error detected 0x000010\n"});
}
