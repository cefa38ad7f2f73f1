// The end of the time a call may block, on the monotonic clock. A plain value; the calling thread's
// own. Nothing outside platform/ and console/
// includes this header.
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <limits>

namespace platform {

// Nanoseconds of the monotonic clock.
std::int64_t MonotonicNanoseconds();

inline constexpr std::int64_t NANOSECONDS_PER_MILLISECOND = 1'000'000;
inline constexpr std::int64_t NANOSECONDS_PER_SECOND = 1'000'000'000;

class CDeadline {
  public:
    static constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();

    // The given milliseconds from now (INFINITE: never; 0: passed already, the clock is not asked).
    explicit CDeadline(DWORD milliseconds);

    // The nanoseconds that are left; 0 once it has passed, NEVER without a limit.
    std::int64_t Remaining() const;

  private:
    std::int64_t m_when;
};

} // namespace platform
