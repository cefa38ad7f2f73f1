#include "terminal/Decimal.h"

#include "common/Ascii.h"

#include <algorithm>
#include <cstdint>
#include <limits>

int ParseDecimal(std::string_view text) {
    text = SkipWhiteSpace(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);

    constexpr std::int64_t kBound = -std::int64_t{std::numeric_limits<int>::min()};
    std::int64_t value = 0;
    for (const char digit : text) {
        if (!IsDigit(digit))
            break;
        value = std::min(value * 10 + (digit - '0'), kBound);
    }
    if (negative)
        return static_cast<int>(-value);
    return static_cast<int>(std::min(value, kBound - 1));
}
