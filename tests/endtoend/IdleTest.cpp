// While nothing happens the program does nothing: it does not wake up and takes no processor time.
#include "tests/endtoend/SessionTest.h"

class CIdleTest : public CSessionTest {
  protected:
    void SetUp() override {
#ifdef __SANITIZE_THREAD__
        GTEST_SKIP() << "the thread sanitizer's own thread wakes up all the time";
#endif
    }

    // For so long there is nothing, once what was begun is done: on a busy machine that takes a
    // while.
    void ExpectIdle(std::chrono::milliseconds time) {
        ASSERT_TRUE(Fulfils("idleness", [&] {
            const std::string before = m_program->GetActivity();
            m_pump.RunFor(time);
            return !before.empty() && m_program->GetActivity() == before;
        }));
    }
};

// With a log, which has nothing to write.
TEST_F(CIdleTest, InteractiveTerminal) {
    StartInteractive({"-O:" + m_folder.GetPath("log")});
    m_device.Send("some output\r\n\x1B[31mred");
    Type("keys\x1B[A\x1B");
    ASSERT_TRUE(DeviceGets("keys\x1B[A\x1B"));
    ExpectIdle(std::chrono::seconds(3));

    // Neither does a menu, a device that takes nothing, or a terminal that takes nothing.
    Type(kF5);
    ASSERT_TRUE(Shows("Baud Rate:"));
    ExpectIdle(std::chrono::seconds(1));
    Type("x");
    ASSERT_TRUE(Shows("Canceled"));
    m_device.SetReadLimit(0);
    Type(std::string(200000, 'k'));
    ExpectIdle(std::chrono::seconds(1));
    m_terminal.SetReading(false);
    m_device.Send(std::string(1000000, 's'));
    ExpectIdle(std::chrono::seconds(1));
    m_program->Kill(SIGKILL);
    EXPECT_TRUE(EndsWith(-SIGKILL));
}

// Three attempts of ten seconds each: this is the one test that waits so long.
TEST_F(CIdleTest, CommandFileOnASilentDevice) {
    StartCommands("AT\n");
    for (int attempt = 0; attempt < 3; ++attempt) {
        ASSERT_TRUE(DeviceGets("AT\r"));
        ExpectIdle(std::chrono::seconds(3));
    }
    ASSERT_TRUE(Shows("No Response"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadWholeFile(m_capture), "AT\r\nNo Response\r\n");
    EXPECT_EQ(m_device.GetReceived(), "");
}
