// The user makes the terminal's window smaller and larger.
#include "tests/endtoend/SessionTest.h"

class CResizeTest : public CSessionTest {
  protected:
    // Resizes and waits until the bottom right corner that the device is told is the new one.
    Result Resizes(int rows, int columns) {
        m_terminal.Resize(rows, columns);
        const std::string corner =
            "\x1B[" + std::to_string(rows) + ';' + std::to_string(columns) + 'R';
        return Fulfils(corner.c_str(), [&] {
            m_device.GetReceived().clear();
            m_device.Send("\x1B[99;99H\x1B[6n");
            m_pump.RunUntil([&] { return m_device.GetReceived().ends_with('R'); });
            return m_device.GetReceived() == corner;
        });
    }
};

TEST_F(CResizeTest, OutputStaysRight) {
    StartInteractive();
    const struct {
        int rows;
        int columns;
    } sizes[] = {{10, 40}, {50, 99}, {24, 80}, {3, 10}, {30, 90}};
    for (const auto& size : sizes) {
        ASSERT_TRUE(Resizes(size.rows, size.columns));
        m_device.Send("\x1B[2J\x1B[1;1Htop\x1B[2;" + std::to_string(size.columns - 1) + "Hwrap");
        ASSERT_TRUE(ShowsInRow(2, "ap"));
        EXPECT_EQ(Screen().GetRow(0), "top");
        EXPECT_EQ(Screen().GetRow(1),
                  std::string(static_cast<std::size_t>(size.columns) - 2, ' ') + "wr");
        m_device.Send("\x1B[99;1Hlast\r\nscrolled");
        ASSERT_TRUE(ShowsInRow(size.rows - 1, "scrolled"));
        EXPECT_EQ(Screen().GetRow(size.rows - 2), "last");
    }
}
