#include "terminal/EscapeParameters.h"

std::optional<int> CEscapeParameters::Value(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    if (text.empty() || text.size() > kLongestValue)
        return std::nullopt;
    return ParseDecimal(text);
}
