// A simulated modem with an opener who reads everything, and a clock that the test sets.
#pragma once

#include "tools/ModemSimulator.h"
#include "tools/SimulatorOptions.h"

#include <gtest/gtest.h>

#include <sstream>

namespace modemsim {

class CTestModem {
  public:
    explicit CTestModem(const SimulatorProfile& profile = {}) : m_Modem(profile) {
        m_Modem.SetOpen(true, m_tNow);
    }

    // Types the text, in pieces of at most this size, and reads what the modem sends until it waits
    // for something.
    std::string Type(std::string_view text, std::size_t most = std::string::npos) {
        std::string sent;
        while (!text.empty()) {
            text.remove_prefix(m_Modem.Input(text.substr(0, most), m_tNow));
            sent += Read();
        }
        return sent + Read();
    }

    // Lets time pass, deadline by deadline; returns what was sent meanwhile.
    std::string Wait(TimeMs duration) {
        const TimeMs end = m_tNow + duration;
        std::string sent;
        for (bool isOver = false; !isOver; sent += Read()) {
            const TimeMs due = m_Modem.NextDeadline().value_or(end + 1);
            isOver = due > end;
            m_tNow = std::min(due, end);
            m_Modem.Advance(m_tNow);
        }
        return sent;
    }

    // Reads what there is, piece by piece; a piece is at most this long.
    std::string Read(std::size_t most = std::string::npos) {
        std::string sent;
        std::string_view ready;
        while (!(ready = m_Modem.Output(m_tNow).substr(0, most)).empty()) {
            sent += ready;
            m_Modem.Consume(ready.size(), m_tNow);
        }
        return sent;
    }

    // The last opener goes and another one comes.
    std::string Reopen() {
        m_Modem.SetOpen(false, m_tNow);
        m_Modem.SetOpen(true, m_tNow);
        return Read();
    }

    CModemSimulator& Modem() { return m_Modem; }
    TimeMs Now() const { return m_tNow; }

  private:
    CModemSimulator m_Modem;
    TimeMs m_tNow = 1000;
};

// Words are parted by one blank; a blank at the end is an empty word.
inline SimulatorOptions Parse(const std::string& line) {
    std::istringstream stream("wirelet-modemsim " + line + ' ');
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, ' ');)
        words.push_back(word);
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return ParseOptions(static_cast<int>(words.size()), arguments.data());
}

// Without echo, which most tests would only repeat.
inline SimulatorProfile QuietProfile(const std::string& options = "--no-echo --messages 0") {
    SimulatorProfile profile = Parse(options).profile;
    profile.version = "9.9";
    profile.startSeconds = 1717157045; // 2024-05-31 12:04:05
    return profile;
}

inline const std::string kOkLine = "\r\nOK\r\n";

} // namespace modemsim
