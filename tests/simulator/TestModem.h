// A simulated modem with an opener who reads everything, and a clock that the test sets.
#pragma once

#include "tools/ModemSimulator.h"

#include <string>

namespace modemsim {

class CTestModem {
  public:
    explicit CTestModem(const SSimulatorProfile& profile = {}) : m_Modem(profile) {
        m_Modem.SetOpen(true, m_tNow);
    }

    // Types the text in one piece and reads what the modem sends until it waits for something.
    std::string Type(std::string_view text) {
        std::string sent;
        while (!text.empty()) {
            text.remove_prefix(m_Modem.Input(text, m_tNow));
            sent += Read();
        }
        return sent + Read();
    }

    std::string TypeBytewise(std::string_view text) {
        std::string sent;
        for (const char byte : text)
            sent += Type({&byte, 1});
        return sent;
    }

    // Lets time pass, deadline by deadline; returns what was sent meanwhile.
    std::string Wait(TimeMs duration) {
        const TimeMs end = m_tNow + duration;
        std::string sent;
        std::optional<TimeMs> due;
        while ((due = m_Modem.NextDeadline()) && *due <= end) {
            m_tNow = *due;
            m_Modem.Advance(m_tNow);
            sent += Read();
        }
        m_tNow = end;
        m_Modem.Advance(m_tNow);
        return sent + Read();
    }

    std::string Read() {
        std::string sent;
        std::string_view ready;
        while (!(ready = m_Modem.Output(m_tNow)).empty()) {
            sent += ready;
            m_Modem.Consume(ready.size(), m_tNow);
        }
        return sent;
    }

    CModemSimulator& Modem() { return m_Modem; }
    TimeMs Now() const { return m_tNow; }

  private:
    CModemSimulator m_Modem;
    TimeMs m_tNow = 1000;
};

// Without echo, which most tests would only repeat.
inline SSimulatorProfile QuietProfile() {
    SSimulatorProfile profile;
    profile.echo = false;
    profile.version = "9.9";
    profile.startSeconds = 1717157045; // 2024-05-31 12:04:05
    return profile;
}

inline const std::string okLine = "\r\nOK\r\n";

} // namespace modemsim
