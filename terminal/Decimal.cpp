#include "terminal/Decimal.h"

#include <algorithm>
#include <cstdint>
#include <limits>

int ParseDecimal(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos)
        return 0;
    text.remove_prefix(start);

    const bool negative = text.front() == '-';
    if (negative || text.front() == '+')
        text.remove_prefix(1);

    constexpr std::int64_t kBound = -std::int64_t{std::numeric_limits<int>::min()};
    std::int64_t value = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            break;
        value = std::min(value * 10 + (digit - '0'), kBound);
    }
    if (negative)
        return static_cast<int>(-value);
    return static_cast<int>(std::min(value, kBound - 1));
}
