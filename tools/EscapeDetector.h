// Finds the escape sequence in data mode: three S2 characters with silence of the guard time before
// the first and after the last, and no gap that long between them. Without a guard time three of
// them anywhere are enough.
//
// Owned by CCall, one thread at a time; knows only the times it is told.
#pragma once

#include "tools/SimulatorProfile.h"

#include <optional>
#include <string_view>

namespace modemsim {

class CEscapeDetector {
  public:
    // Data mode begins; the guard time counts from here.
    void Start(TimeMs now);

    // Takes data, at most to the end of a sequence that needs no guard time after it. Returns how
    // many bytes were looked at; Escaped() tells whether the sequence is complete.
    std::size_t Feed(std::string_view bytes, char escape, TimeMs guard, TimeMs now);

    // When the silence that completes the sequence has lasted long enough.
    std::optional<TimeMs> Deadline(TimeMs guard) const;

    bool Escaped(TimeMs guard, TimeMs now) const;

  private:
    void Take(bool escape, TimeMs guard, TimeMs now);

    int m_nCount = 0;
    TimeMs m_tLast = 0; // of the last byte
};

} // namespace modemsim
