#include "tests/support/Unescape.h"

std::string Unescape(const std::string& text) {
    constexpr std::string_view kLetters = "rnte";
    constexpr std::string_view kMeanings = "\r\n\t\x1B";
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            bytes += text[at];
        } else if (text[++at] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(at + 1, 2), {}, 16));
            at += 2;
        } else {
            const std::size_t letter = kLetters.find(text[at]);
            bytes += letter < kMeanings.size() ? kMeanings[letter] : text[at];
        }
    }
    return bytes;
}
