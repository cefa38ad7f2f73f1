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

TEST_F(CEndTest, SignalsAndCrashes) {
    for (const char* options : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        m_environment[options] = "handle_segv=0:handle_abort=0:handle_sigfpe=0";
    const std::pair<int, int> ends[] = {{SIGHUP, 0},         {SIGTERM, 0},        {SIGQUIT, 0},
                                        {SIGSEGV, -SIGSEGV}, {SIGABRT, -SIGABRT}, {SIGFPE, -SIGFPE},
                                        {SIGALRM, -SIGALRM}, {SIGUSR1, -SIGUSR1}};
    for (const auto& [signal, exit] : ends) {
        StartColoured();
        m_program->Kill(signal);
        EXPECT_TRUE(Ends(exit)) << "signal " << signal;
    }
}

TEST_F(CEndTest, StoppedForAWhile) {
    CPseudoTerminal& line = m_terminal.GetLine();
    const termios before = line.GetSettings();
    StartColoured();
    // The second stop comes without being asked; the shell then sets the terminal up by itself.
    for (const int stop : {SIGTSTP, SIGSTOP}) {
        m_program->Kill(stop);
        ASSERT_TRUE(Fulfils("the stop", [this] { return m_program->IsStopped(); }));
        if (stop == SIGTSTP) {
            EXPECT_TRUE(line.GetSettings() == before);
        }
        line.ApplySettings(before);
        m_program->Kill(SIGCONT);
        ASSERT_TRUE(Fulfils("the terminal taken over",
                            [&] { return (line.GetSettings().c_lflag & (ICANON | ECHO)) == 0; }));
        Type("typed\x03");
        ASSERT_TRUE(DeviceGets("typed\x03"));
    }
    m_device.Send("\x1B[2J\x1B[Hafterwards");
    ASSERT_TRUE(ShowsInRow(0, "afterwards"));
}

TEST_F(CEndTest, PasteOnASlowDeviceStillGoesOutAfterTheEnd) {
    StartInteractive();
    m_device.SetReadLimit(512);
    const std::string paste = MakeLines(20000, " \u00E9\u6F22\xF0\x9F\x99\x82\r");
    Type(paste + kAltF4);
    ASSERT_TRUE(DeviceGets(paste));
    EXPECT_TRUE(Ends());
}

// However busy the device is.
TEST_F(CEndTest, WhileTheDeviceSends) {
    for (const bool isClosed : {false, true}) {
        StartInteractive();
        m_device.SendEndlessly("some output\r\n");
        m_pump.RunUntil([this] { return m_device.GetSentCount() > 200000; });
        if (isClosed)
            m_terminal.CloseWindow();
        else
            m_program->Kill(SIGTERM);
        EXPECT_TRUE(Ends());
        m_device = CDevice();
    }
}
