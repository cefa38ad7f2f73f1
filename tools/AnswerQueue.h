// The bytes that the simulated modem has yet to send, in order: text, and runs of a fixed pattern
// that take no memory however long they are. A hold keeps what follows it back until its time.
//
// Owned by CModemSimulator, one thread at a time. Nothing here blocks or fails; memory grows with
// the text appended, which the owner bounds by taking no input while Size() is high.
#pragma once

#include "tools/SimulatorProfile.h"

#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace modemsim {

// The pattern's bytes from the given place on: at least one, printable, never a line end.
std::string_view PatternAt(std::uint64_t position);

class CAnswerQueue {
  public:
    void Append(std::string_view bytes);
    void AppendPattern(std::uint64_t count);

    // Whatever is appended from now on is not ready before this time.
    void HoldUntil(TimeMs time);

    void Clear();

    // The next bytes that may be sent, empty when there are none now; valid until the next change.
    std::string_view Ready(TimeMs now) const;

    // Takes bytes away that Ready() showed.
    void Consume(std::size_t count);

    // Bytes not yet consumed, held ones and runs included.
    std::uint64_t Size() const { return m_nSize; }

    // True while a hold has not run out.
    bool Holds(TimeMs now) const { return now < m_tHold; }

    // When the next hold runs out, if one has not yet.
    std::optional<TimeMs> Deadline(TimeMs now) const;

  private:
    struct Segment {
        TimeMs notBefore;
        std::string text;
        std::uint64_t run = 0; // length of a pattern; the text is empty then
        std::uint64_t sent = 0;
    };

    Segment& Tail();

    std::deque<Segment> m_listSegments;
    std::uint64_t m_nSize = 0;
    TimeMs m_tHold = std::numeric_limits<TimeMs>::min();
};

} // namespace modemsim
