// The end of the time that something may take, on the monotonic clock. A plain value; any thread
// may use its own.
#pragma once

#include "platform/Types.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace platform {

// Nanoseconds of the monotonic clock.
std::int64_t MonotonicNanoseconds();

inline constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

class CDeadline {
  public:
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

    // The given milliseconds from now (INFINITE: never; 0: passed already, the clock is not asked).
    explicit CDeadline(DWORD milliseconds) {
        if (milliseconds == INFINITE)
            m_when = kNever;
        else if (milliseconds != 0)
            m_when = MonotonicNanoseconds() + milliseconds * kNanosecondsPerMillisecond;
    }

    // The milliseconds that are left, a begun one included; 0 once it has passed, INFINITE without
    // a limit.
    DWORD Remaining() const {
        const std::int64_t left = RemainingNanoseconds();
        const std::int64_t begun = kNanosecondsPerMillisecond - 1;
        return left == kNever ? INFINITE
                              : static_cast<DWORD>((left + begun) / kNanosecondsPerMillisecond);
    }

    // The same in nanoseconds, and kNever without a limit.
    std::int64_t RemainingNanoseconds() const {
        if (m_when == 0 || m_when == kNever)
            return m_when;
        return std::max<std::int64_t>(m_when - MonotonicNanoseconds(), 0);
    }

  private:
    std::int64_t m_when = 0;
};

} // namespace platform
