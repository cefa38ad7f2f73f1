// What bytes are as ASCII characters, in any locale. Pure; any thread may call this.
#pragma once

#include <algorithm>
#include <string_view>

inline constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

constexpr bool IsDigit(int character) {
    return character >= '0' && character <= '9';
}

// The text without the white space that it begins with.
constexpr std::string_view SkipWhiteSpace(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
}
