// Tells when something that happens every so often is due. Told the time, never asks for it.
#pragma once

#include "tools/SimulatorProfile.h"

namespace modemsim {

class CPeriodicTimer {
  public:
    // A period of 0 is never due.
    explicit CPeriodicTimer(TimeMs period) : m_tPeriod(period) {}

    void Start(TimeMs now) {
        if (m_tPeriod > 0)
            m_tNext = now + m_tPeriod;
    }
    void Stop() { m_tNext.reset(); }

    // True once a period. After a long stop the missed ones are not made up for.
    bool Due(TimeMs now) {
        if (!m_tNext || now < *m_tNext)
            return false;
        m_tNext = now + m_tPeriod;
        return true;
    }

    std::optional<TimeMs> Next() const { return m_tNext; }

  private:
    TimeMs m_tPeriod;
    std::optional<TimeMs> m_tNext;
};

} // namespace modemsim
