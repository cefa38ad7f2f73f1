// While nothing happens the program does nothing: it does not wake up and takes no processor time.
#include "tests/endtoend/SessionTest.h"

#include <numeric>

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
            const auto switches = m_program->CountSwitches();
            const long ticks = m_program->CountProcessorTicks();
            m_pump.RunFor(time);
            return m_program->CountSwitches() == switches &&
                   m_program->CountProcessorTicks() == ticks;
        }));
    }
};

TEST_F(CIdleTest, InteractiveTerminal) {
    StartInteractive();
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

// Neither does a log with nothing to write.
TEST_F(CIdleTest, LoggedTerminal) {
    Start(m_device.GetPath(), {"-O:" + m_folder.GetPath("log")});
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    m_device.Send("some output");
    Type("keys");
    ASSERT_TRUE(DeviceGets("keys"));
    ExpectIdle(std::chrono::seconds(3));
}

// Three attempts of ten seconds each: this is the one test that waits so long.
TEST_F(CIdleTest, CommandFileOnASilentDevice) {
    const std::string capture = m_folder.GetPath("capture");
    Start(m_device.GetPath(), {"-A:" + m_folder.Write("commands", "AT\n"), "-O:" + capture});
    ASSERT_TRUE(Shows("Setting 19200 baud"));
    ExpectIdle(std::chrono::seconds(3));

    const auto total = [this] {
        const auto counts = m_program->CountSwitches();
        return std::accumulate(counts.begin(), counts.end(), 0L,
                               [](long sum, const auto& row) { return sum + row.second; });
    };
    const long before = total();
    const long ticks = m_program->CountProcessorTicks();
    m_pump.RunFor(std::chrono::seconds(20));
    // At most two new attempts begin in this time, each with a hand-over to the writing thread.
    EXPECT_LE(total() - before, 40);
    EXPECT_LE(m_program->CountProcessorTicks() - ticks, 10);
    ASSERT_TRUE(Shows("No Response"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(ReadWholeFile(capture), "AT\r\nNo Response\r\n");
    EXPECT_EQ(m_device.GetReceived(), "AT\rAT\rAT\r");
}
