#include "terminal/EscapeParameters.h"

#include "terminal/Decimal.h"

namespace {

constexpr char kSeparator = ';';
constexpr std::size_t kLongestValue = 2;

} // namespace

std::optional<int> CEscapeParameters::Next() {
    const char* at = m_text.data();
    const char* const end = at + m_text.size();
    while (at != end && *at == kSeparator)
        ++at;
    const char* const parameter = at;
    while (at != end && *at != kSeparator)
        ++at;
    m_text = std::string_view(at, static_cast<std::size_t>(end - at));
    return Value(std::string_view(parameter, static_cast<std::size_t>(at - parameter)));
}

std::optional<int> CEscapeParameters::Value(std::string_view text) {
    if (text.empty() || text.size() > kLongestValue)
        return std::nullopt;
    const unsigned first = static_cast<unsigned char>(text.front()) - unsigned{'0'};
    const unsigned last = static_cast<unsigned char>(text.back()) - unsigned{'0'};
    if (first > 9 || last > 9)
        return ParseDecimal(text);
    return static_cast<int>(text.size() == 1 ? last : first * 10 + last);
}
