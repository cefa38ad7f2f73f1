#include "terminal/EscapeParameters.h"

#include "terminal/Decimal.h"

#include <algorithm>

namespace {

constexpr char kSeparator = ';';
constexpr std::size_t kLongestValue = 2;

} // namespace

std::optional<int> CEscapeParameters::Next() {
    m_text.remove_prefix(std::min(m_text.find_first_not_of(kSeparator), m_text.size()));
    const std::string_view parameter = m_text.substr(0, m_text.find(kSeparator));
    m_text.remove_prefix(parameter.size());
    return Value(parameter);
}

std::optional<int> CEscapeParameters::Value(std::string_view text) {
    if (text.empty() || text.size() > kLongestValue)
        return std::nullopt;
    return ParseDecimal(text);
}
