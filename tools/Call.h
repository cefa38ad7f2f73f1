// The one call that the simulated modem may have: ringing, dialling, voice, data, or data with the
// modem in command mode. Says nothing to the opener; CModemSimulator words what happens.
//
// Owned by the modem's state, one thread at a time; knows only the times it is told.
#pragma once

#include "tools/EscapeDetector.h"

namespace modemsim {

enum class ECallState { Idle, Ringing, Dialling, Voice, Online, Escaped };

class CCall {
  public:
    ECallState State() const { return m_eState; }

    // What a number, as it stands after ATD, leads to; the profile's rules come before the
    // built-in.
    static EResult Outcome(const std::string& number, const SimulatorProfile& profile);

    void Dial(EResult outcome, TimeMs until);
    void StartVoice();

    // Data mode, with a new call. hangUpAfter: the far end's patience, 0 for endless.
    void Connect(TimeMs hangUpAfter, TimeMs now);

    // Back to data mode in the same call; false without one.
    bool Resume(TimeMs now);

    // Command mode, the call stays.
    void Escape();

    void HangUp();

    // Counts a ring of a call coming in; false when the line is in use.
    bool Ring();
    int Rings() const { return m_nRings; }

    CEscapeDetector& Escapes() { return m_Escapes; }
    const CEscapeDetector& Escapes() const { return m_Escapes; }

    EResult DialOutcome() const { return m_eOutcome; }

    // When dialling ends or the far end hangs up.
    std::optional<TimeMs> Deadline() const { return m_tDeadline; }

  private:
    ECallState m_eState = ECallState::Idle;
    EResult m_eOutcome = EResult::NoCarrier;
    std::optional<TimeMs> m_tDeadline;
    int m_nRings = 0;
    CEscapeDetector m_Escapes;
};

} // namespace modemsim
