// The device is unplugged in the middle of much: a pseudo-terminal here, real devices in tests/vm,
// which the next test finds plugged in again. What it does in other places is in gone.txt.
#include "tests/endtoend/SessionTest.h"

using CDeviceGoneTest = CSessionTest;

TEST_F(CDeviceGoneTest, InMidOutput) {
    StartInteractive({"-O:" + m_capture});
    const std::string text = MakeLines(1000000);
    m_device.Send(text);
    ASSERT_TRUE(Fulfils("output", [this] { return m_terminal.GetOutput().size() > 50000; }));
    m_device.Vanish();
    EXPECT_FALSE(m_device.IsAllSent());
    EXPECT_TRUE(EndsAsGone());
    EXPECT_TRUE(Ends());
    // All that was shown is logged, and nothing is left out in between.
    const std::string log = Decode(ReadWholeFile(m_capture));
    EXPECT_GT(log.size(), 20000U);
    EXPECT_TRUE(IsSame(log, (">ATE1V1\r<" + text).substr(0, log.size())));
}

TEST_F(CDeviceGoneTest, DuringAPaste) {
    StartInteractive();
    m_device.SetReadLimit(0);
    Type(std::string(1 << 20, 'p'));
    m_pump.RunFor(std::chrono::milliseconds(300));
    m_device.Vanish();
    // What the program did not take is the shell's from now on, so no prompt stands alone.
    EXPECT_TRUE(EndsAsGone());
}
