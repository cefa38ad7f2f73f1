#include "script/NibbleText.h"

#include "common/Ascii.h"

#include <algorithm>

namespace {

constexpr char kFirstNibble = '0';
constexpr char kLastNibble = '?';

} // namespace

std::string EncodeNumber(DWORD value) {
    std::string text;
    for (; value != 0; value >>= 4)
        text.push_back(static_cast<char>(kFirstNibble + static_cast<char>(value & 0xF)));
    std::ranges::reverse(text);
    return text;
}

DWORD DecodeNumber(std::string_view text) {
    DWORD value = 0;
    for (const char character : SkipWhiteSpace(text)) {
        if (character < kFirstNibble || character > kLastNibble)
            break;
        value = value << 4 | static_cast<DWORD>(character - kFirstNibble);
    }
    return value;
}
