// A pseudo-terminal opened as a port, and the lines and error counters that it lacks.
#pragma once

#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/comm/CommLines.h"
#include "tests/support/Pipe.h"

#include <sys/ioctl.h>

#include <atomic>
#include <cerrno>
#include <memory>

inline constexpr DWORD kPatience = 60'000; // for what must come

HANDLE OpenPort(const std::string& name);

// What a test moves, in place of a port's own lines and counters. Any thread may call anything.
class CTestLines final : public platform::ICommLines {
  public:
    // Whether the driver tells when a line moves, as opposed to one that must be asked.
    explicit CTestLines(bool isTelling) : m_bTelling(isTelling) {}

    static std::shared_ptr<CTestLines> PutInto(HANDLE port, bool isTelling);

    void SetCarrier(bool isOn) {
        m_nLines = isOn ? TIOCM_CAR : 0;
        EXPECT_EQ(write(m_moves.writer.Get(), "", 1), 1);
    }
    // The driver holds who asks until it is told to go on.
    void Hold(bool isHeld) {
        m_bHeld = isHeld;
        m_bHeld.notify_all();
    }

    std::atomic<int> m_nFrameErrors = 0;
    std::atomic<int> m_nAsked = 0; // how often anything was
    std::atomic<bool> m_bBroken = false;
    std::atomic<bool> m_bPresent = true;

    BOOL GetLines(int& lines) override {
        ++m_nAsked;
        m_bHeld.wait(true);
        lines = m_nLines;
        return m_bBroken ? platform::FailWith(ERROR_DEVICE_NOT_CONNECTED) : TRUE;
    }
    bool HasLines() const override { return m_bPresent; }
    BOOL GetCounters(serial_icounter_struct& counters) override {
        ++m_nAsked;
        counters.frame = m_nFrameErrors;
        return m_bPresent;
    }
    int AwaitMove(int) override {
        char move = 0;
        if (!m_bTelling)
            return ENOTTY;
        return read(m_moves.reader.Get(), &move, 1) == 1 ? 0 : errno;
    }

  private:
    const bool m_bTelling;
    const Pipe m_moves;
    std::atomic<int> m_nLines = 0;
    std::atomic<bool> m_bHeld = false;
};
