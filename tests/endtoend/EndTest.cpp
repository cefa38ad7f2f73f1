// The ends of a session: whatever ends it, the terminal is sane afterwards.
#include "tests/endtoend/SessionTest.h"

#include <csignal>

using CEndTest = CSessionTest;

TEST_F(CEndTest, SignalsAndCrashes) {
    for (const char* options : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        m_environment[options] = "handle_segv=0:handle_abort=0:handle_sigfpe=0";
    const std::pair<int, int> ends[] = {{SIGHUP, 0},         {SIGTERM, 0},        {SIGQUIT, 0},
                                        {SIGSEGV, -SIGSEGV}, {SIGABRT, -SIGABRT}, {SIGFPE, -SIGFPE},
                                        {SIGALRM, -SIGALRM}, {SIGUSR1, -SIGUSR1}};
    for (const auto& [signal, exit] : ends) {
        StartInteractive();
        // In the middle of something: colours on, the cursor above the text.
        m_device.Send("\x1B[20;1Hlast\x1B[10;5H\x1B[1;31;44mcoloured");
        ASSERT_TRUE(Shows("coloured"));
        m_program->Kill(signal);
        EXPECT_TRUE(Ends(exit)) << "signal " << signal;
    }
}
