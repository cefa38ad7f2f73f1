// What the simulated modem sends, and the faults that befall it on the way: delays, garbage, long
// lines, single bytes, floods, silence, the device's going away.
//
// Owned by CModemSimulator, one thread at a time; knows only the times it is told.
#pragma once

#include "tools/AnswerQueue.h"
#include "tools/ResultCode.h"

#include <random>

namespace modemsim {

class CModemOutput {
  public:
    explicit CModemOutput(const Faults& faults);

    // Bytes as they are: echo, data of a call.
    void Raw(std::string_view bytes);

    // An answer begins: whatever comes before an answer comes now.
    void BeginAnswer(TimeMs now);
    void Information(const std::vector<std::string>& lines, const ModemSettings& settings);
    void LongLine(std::uint64_t count, const ModemSettings& settings);
    void Result(const FinalResult& result, const ModemSettings& settings);

    // From here on nothing more is queued; what is queued already is still sent.
    void Silence() { m_bSilent = true; }
    bool Silent() const { return m_bSilent; }

    // Endless bytes without a line end, after what is queued.
    void StartFlood();
    void StopFlood() { m_bFlood = false; }
    bool Flooding() const { return m_bFlood; }

    // The device goes away once what is queued was sent.
    void Vanish(TimeMs now);

    // True from the last byte before the device goes away on; nothing is taken or sent any more.
    bool Vanishing() const { return m_tVanish.has_value(); }
    bool Vanished(TimeMs now) const { return m_tVanish && now >= *m_tVanish; }

    // The next bytes to write, as many as one write may take; empty when there are none now. Valid
    // until the next change.
    std::string_view Ready(TimeMs now) const;
    void Consume(std::size_t count, TimeMs now);
    void Discard();

    // More is queued than an opener that reads leaves unread.
    bool Full() const;

    // True while input may still be answered: little is queued and no answer is being held.
    bool HasRoom(TimeMs now) const;

    std::optional<TimeMs> Deadline(TimeMs now) const;

  private:
    Faults m_Faults;
    CAnswerQueue m_Queue;
    std::minstd_rand m_Random;
    std::uint64_t m_nSent = 0;
    std::uint64_t m_nFlooded = 0;
    bool m_bSilent = false;
    bool m_bFlood = false;
    std::optional<TimeMs> m_tVanish;
};

} // namespace modemsim
