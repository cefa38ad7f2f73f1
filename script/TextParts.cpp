#include "script/TextParts.h"

#include "common/Ascii.h"

#include <algorithm>

namespace {

std::size_t ToLength(std::int32_t count) {
    return static_cast<std::size_t>(std::max(count, 0));
}

unsigned char ToLower(char character) {
    const bool isCapital = character >= 'A' && character <= 'Z';
    return static_cast<unsigned char>(isCapital ? character - 'A' + 'a' : character);
}

std::int32_t SignOf(int difference) {
    return (difference > 0) - (difference < 0);
}

} // namespace

std::string_view LeftOf(std::string_view text, std::int32_t count) {
    return text.substr(0, ToLength(count));
}

std::string_view RightOf(std::string_view text, std::int32_t count) {
    return text.substr(text.size() - std::min(ToLength(count), text.size()));
}

std::string_view MiddleOf(std::string_view text, std::int32_t start, std::int32_t count) {
    if (start < 0 || ToLength(start) >= text.size())
        return {};
    return text.substr(ToLength(start), ToLength(count));
}

std::int32_t CompareTexts(std::string_view first, std::string_view second) {
    return SignOf(first.compare(second));
}

std::int32_t CompareTextsIgnoringCase(std::string_view first, std::string_view second) {
    const std::size_t common = std::min(first.size(), second.size());
    for (std::size_t index = 0; index < common; ++index) {
        const int difference = ToLower(first[index]) - ToLower(second[index]);
        if (difference != 0)
            return SignOf(difference);
    }
    return (first.size() > second.size()) - (first.size() < second.size());
}

std::int32_t FindText(std::string_view text, std::string_view wanted) {
    const std::size_t position = text.find(wanted);
    return position == std::string_view::npos ? -1 : static_cast<std::int32_t>(position);
}

std::int32_t NumberOf(std::string_view text) {
    text = SkipWhiteSpace(text);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    DWORD number = 0;
    for (const char character : text) {
        if (!IsDigit(character))
            break;
        number = number * 10 + static_cast<DWORD>(character - '0');
    }
    return static_cast<std::int32_t>(isNegative ? 0 - number : number);
}
