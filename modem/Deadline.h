// CDeadline: a point on the millisecond tick counter, kept as a start and a time-out.
//
// The counter wraps after about 49.7 days. A difference of two readings is right across the wrap, a
// comparison of a reading with a point is not; so only differences are taken, and every time-out of
// 32 bits is kept. A plain value; any thread may use its own.
#pragma once

#include "platform/Clock.h"
#include "platform/Types.h"

class CDeadline {
  public:
    // The given milliseconds from now.
    explicit CDeadline(DWORD timeout) : CDeadline(GetTickCount(), timeout) {}

    // The given milliseconds after a reading of the tick counter.
    constexpr CDeadline(DWORD start, DWORD timeout) : m_dwStart(start), m_dwTimeout(timeout) {}

    // Milliseconds left; 0 once the deadline is reached.
    DWORD Remaining() const { return RemainingAt(GetTickCount()); }

    // The same, as seen at a reading of the tick counter.
    constexpr DWORD RemainingAt(DWORD now) const {
        const DWORD elapsed = now - m_dwStart;
        return elapsed < m_dwTimeout ? m_dwTimeout - elapsed : 0;
    }

  private:
    DWORD m_dwStart;
    DWORD m_dwTimeout;
};
