// Goes character by character; Unicode's category of each says whether it is plain. A byte that
// belongs to no character counts as one that is not.
#include "services/telephony/PlainText.h"

#include "platform/terminal/PrintableText.h"

#include <algorithm>

namespace telephonyservice {

// Whatever cannot be shown has become a question mark.
bool IsPlainText(std::string_view text) {
    const std::string shown = platform::PrintableText(text);
    return std::ranges::count(shown, '?') == std::ranges::count(text, '?');
}

std::string MakePlainText(std::string_view text, std::size_t limit) {
    std::string plain = platform::PrintableText(text);
    if (plain.size() <= limit)
        return plain;
    while (limit > 0 && (plain[limit] & 0xC0) == 0x80)
        --limit;
    return plain.substr(0, limit);
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

} // namespace telephonyservice
