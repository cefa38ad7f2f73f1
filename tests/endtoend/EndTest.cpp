// The ends of a session: whatever ends it, the terminal is sane afterwards.
#include "tests/endtoend/SessionTest.h"

#include <csignal>

class CEndTest : public CSessionTest {
  protected:
    // A session in the middle of something: colours on, the cursor above the text.
    void StartColoured() {
        StartInteractive();
        m_device.Send("\x1B[20;1Hlast\x1B[10;5H\x1B[1;31;44mcoloured");
        ASSERT_TRUE(Shows("coloured"));
    }
};

TEST_F(CEndTest, CtrlBackslash) {
    StartColoured();
    Type(std::string("typed") + kCtrlBackslash);
    EXPECT_TRUE(Ends());
}

TEST_F(CEndTest, Signals) {
    for (const int signal : {SIGHUP, SIGTERM, SIGQUIT}) {
        StartColoured();
        m_program->Kill(signal);
        EXPECT_TRUE(Ends()) << "signal " << signal;
        m_device.GetReceived().clear();
    }
    // An interrupt is no end: Ctrl+C is a key here.
    StartColoured();
    m_program->Kill(SIGINT);
    Type("still there");
    EXPECT_TRUE(DeviceGets("still there"));
    m_program->Kill(SIGKILL);
}

TEST_F(CEndTest, StoppedForAWhile) {
    const termios before = m_terminal.GetLine().GetSettings();
    StartColoured();
    m_program->Kill(SIGTSTP);
    ASSERT_TRUE(Fulfils("the terminal given back",
                        [&] { return m_terminal.GetLine().GetSettings() == before; }));
    m_pump.RunFor(std::chrono::milliseconds(200));
    m_program->Kill(SIGCONT);
    ASSERT_TRUE(Fulfils("the terminal taken over",
                        [&] { return !(m_terminal.GetLine().GetSettings() == before); }));
    Type("typed\x03");
    ASSERT_TRUE(DeviceGets("typed\x03"));
    m_device.Send("\x1B[2J\x1B[Hafterwards");
    ASSERT_TRUE(ShowsInRow(0, "afterwards"));
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CEndTest, SequencesCutShort) {
    StartInteractive();
    m_device.Send("text\x1B[1;3");
    ASSERT_TRUE(Shows("text"));
    Type(kAltF4);
    ASSERT_TRUE(Ends());
    StartInteractive();
    m_device.Send("text\xF0\x9F\x99");
    ASSERT_TRUE(ShowsInRow(2, "text"));
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CEndTest, Crash) {
    for (const char* options : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        SetVariable(options, "handle_segv=0:handle_abort=0:handle_sigfpe=0");
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE}) {
        StartColoured();
        m_program->Kill(signal);
        EXPECT_TRUE(Ends(-signal));
        m_device.GetReceived().clear();
    }
}

TEST_F(CEndTest, DeviceGoneWhileIdle) {
    StartColoured();
    m_device.Vanish();
    ASSERT_TRUE(Shows("The device " + m_device.GetPath() + " is gone"));
    EXPECT_TRUE(Ends());
}

TEST_F(CEndTest, DeviceGoneInMidOutput) {
    StartInteractive();
    m_device.SendEndlessly("some output\r\n");
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.GetSentCount() > 200000; }));
    m_device.Vanish();
    ASSERT_TRUE(Shows("The device " + m_device.GetPath() + " is gone"));
    EXPECT_TRUE(Ends());
}

TEST_F(CEndTest, DeviceGoneDuringAPaste) {
    StartInteractive();
    m_device.SetReadLimit(0);
    Type(std::string(1 << 20, 'p'));
    m_pump.RunFor(std::chrono::milliseconds(300));
    m_device.Vanish();
    // What the program did not take is the shell's from now on; here it is only echoed.
    EXPECT_TRUE(Fulfils("the end", [this] { return m_program->HasEnded(); }));
    EXPECT_EQ(m_program->GetExit(), 0);
    EXPECT_TRUE(Fulfils("the message", [this] {
        return m_terminal.GetOutput().find("The device " + m_device.GetPath() + " is gone") !=
               std::string::npos;
    }));
}

TEST_F(CEndTest, DeviceThatTakesNothingDoesNotHoldTheEndUp) {
    StartInteractive();
    m_device.SetReadLimit(0);
    Type(std::string(200000, 'p'));
    m_pump.RunFor(std::chrono::milliseconds(300));
    m_program->Kill(SIGTERM);
    EXPECT_TRUE(Fulfils("the end", [this] { return m_program->HasEnded(); }));
    EXPECT_EQ(m_program->GetExit(), 0);
}

TEST_F(CEndTest, TerminalClosed) {
    StartInteractive();
    // However busy the device is.
    m_device.SendEndlessly("some output\r\n");
    m_terminal.CloseWindow();
    EXPECT_TRUE(Ends());
}
