// Goes character by character; Unicode's category of each says whether it is plain. A byte that
// belongs to no character counts as one that is not.
#include "services/telephony/PlainText.h"

#include <algorithm>
#include <utf8proc.h>

namespace telephonyservice {
namespace {

struct Character {
    std::size_t length; // at least 1, also for a byte that belongs to no character
    bool isPlain;
};

bool IsPlainCategory(utf8proc_category_t category) {
    switch (category) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF: // direction changes among them: the text would not read as it is
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
        return false;
    default:
        return true;
    }
}

// The text must not be empty.
Character FirstCharacter(std::string_view text) {
    utf8proc_int32_t point = -1;
    const auto size = static_cast<utf8proc_ssize_t>(std::min<std::size_t>(text.size(), 4));
    const utf8proc_ssize_t length =
        utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()), size, &point);
    if (length <= 0)
        return {1, false};
    return {static_cast<std::size_t>(length), IsPlainCategory(utf8proc_category(point))};
}

} // namespace

bool IsPlainText(std::string_view text) {
    while (!text.empty()) {
        const Character first = FirstCharacter(text);
        if (!first.isPlain)
            return false;
        text.remove_prefix(first.length);
    }
    return true;
}

std::string MakePlainText(std::string_view text, std::size_t limit) {
    std::string plain;
    while (!text.empty()) {
        const Character first = FirstCharacter(text);
        const std::string_view shown = first.isPlain ? text.substr(0, first.length) : "?";
        if (plain.size() + shown.size() > limit)
            break;
        plain += shown;
        text.remove_prefix(first.length);
    }
    return plain;
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

} // namespace telephonyservice
