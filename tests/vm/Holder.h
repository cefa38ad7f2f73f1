// Another user of a serial device, as root may be. While it lives, the program under test is
// neither the first nor the last one, at whose coming and going the drivers move the lines by
// themselves.
#pragma once

#include "tests/support/Pipe.h"

#include <functional>
#include <sys/ioctl.h>
#include <termios.h>

// The kernel's, whose header does not go with <termios.h>: the UART's spare outputs, of which the
// second lets its interrupts through, and its loop-back.
inline constexpr int TIOCM_OUT1 = 0x2000;
inline constexpr int TIOCM_OUT2 = 0x4000;
inline constexpr int TIOCM_LOOP = 0x8000;

class CHolder {
  public:
    explicit CHolder(const std::string& device)
        : m_device(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        EXPECT_TRUE(m_device);
    }

    void SetLines(int lines) { EXPECT_EQ(ioctl(m_device.Get(), TIOCMSET, &lines), 0); }

    // Starts the flow control while the UART is looped back, with its RTS, and so CTS, low. Out of
    // the loop the chip's CTS is high again, but its emulation tells the driver of no change.
    void LowerCts(const std::function<void()>& startFlowControl) {
        SetLines(TIOCM_LOOP | TIOCM_OUT2 | TIOCM_DTR);
        startFlowControl();
        SetLines(TIOCM_OUT2 | TIOCM_DTR);
    }

    // Whether others than root are kept out.
    bool IsExclusive() const {
        int isExclusive = 0;
        return ioctl(m_device.Get(), TIOCGEXCL, &isExclusive) == 0 && isExclusive != 0;
    }

    termios GetSettings() const {
        termios settings{};
        EXPECT_EQ(tcgetattr(m_device.Get(), &settings), 0);
        return settings;
    }
    void ApplySettings(const termios& settings) {
        EXPECT_EQ(tcsetattr(m_device.Get(), TCSANOW, &settings), 0);
    }

  private:
    CDescriptor m_device;
};
