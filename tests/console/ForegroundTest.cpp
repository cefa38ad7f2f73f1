// Taking the terminal over from a shell: what was typed before, and a start in the background.
#include "tests/endtoend/SessionTest.h"

class ForegroundTest : public CSessionTest {
  protected:
    // What a shell with job control does; "job" starts the program in the background and waits
    // until it has stopped, as "stops" does.
    void StartShell(const std::string& commands) {
        m_work = [script = R"(set -m; path=$1
            stops() { until read -r _ _ state _ </proc/$!/stat && [ $state = T ]; do sleep 0.02; done; }
            job() { "$0" "$path" & stops; }
            )" + commands,
                  path = m_device.GetPath()] {
            setenv("TERM", "xterm", 1);
            execl("/bin/bash", "bash", "-c", script.c_str(), WIRELET, path.c_str(), nullptr);
        };
        StartWith({});
    }
};

TEST_F(ForegroundTest, WhatWasTypedToTheShellHasEnterAsAKey) {
    Type("a\rb");
    ASSERT_TRUE(Shows("b")); // echoed
    Start();
    EXPECT_TRUE(DeviceGets("ATE1V1\ra\rb"));
    Type("\n\rq");
    EXPECT_TRUE(DeviceGets("\n\rq"));
}

// The line editor's mode is another than a program's.
TEST_F(ForegroundTest, AWaitForAKeyInTheBackgroundStopsUntilTheTerminalIsThere) {
    StartShell("stty -icanon -echo; job; kill -CONT $!; sleep 0.1; stops; stty icanon echo; fg");
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    ASSERT_TRUE(Fulfils("the terminal taken over",
                        [&] { return (m_terminal.GetLine().GetSettings().c_iflag & ICRNL) == 0; }));
    Type("\n\rq");
    EXPECT_TRUE(DeviceGets("\n\rq"));
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(ForegroundTest, ASignalEndsWhatStoppedInTheBackground) {
    StartShell("job; kill -TERM $!; kill -CONT $!; while kill -0 $!; do sleep 0.02; done; wait $!");
    EXPECT_TRUE(EndsWith(0));
    EXPECT_TRUE(GivesTerminalBack());
}
