#include "platform/objects/Deadline.h"

#include <ctime>

namespace platform {

std::int64_t MonotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

} // namespace platform
