#include "tools/GsmAlphabet.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

constexpr std::uint8_t kEscapeSeptet = 0x1B;

struct Mapping {
    char character;
    std::uint8_t septet;
};

// Where the alphabet differs from ASCII; 0x20 to 0x7A is otherwise the same.
constexpr Mapping kMoved[] = {{'@', 0x00}, {'$', 0x02}, {'\n', 0x0A}, {'\r', 0x0D}, {'_', 0x11}};

// Reached by the escape septet.
constexpr Mapping kExtension[] = {{'^', 0x14}, {'{', 0x28}, {'}', 0x29}, {'\\', 0x2F},
                                  {'[', 0x3C}, {'~', 0x3D}, {']', 0x3E}, {'|', 0x40}};

// Places at which the alphabet has a letter that ASCII lacks.
bool IsForeign(std::uint8_t septet) {
    return septet < 0x20 || septet == 0x24 || septet == 0x40 || (septet > 0x5A && septet < 0x61) ||
           septet > 0x7A;
}

template <std::size_t Count> const Mapping* Find(const Mapping (&table)[Count], char character) {
    const auto* found = std::ranges::find(table, character, &Mapping::character);
    return found == std::end(table) ? nullptr : found;
}

template <std::size_t Count>
char Character(const Mapping (&table)[Count], std::uint8_t septet, char otherwise) {
    const auto* found = std::ranges::find(table, septet, &Mapping::septet);
    return found == std::end(table) ? otherwise : found->character;
}

} // namespace

std::vector<std::uint8_t> ToSeptets(std::string_view text) {
    std::vector<std::uint8_t> septets;
    for (const char character : text) {
        const auto code = static_cast<std::uint8_t>(character);
        if (const Mapping* entry = Find(kMoved, character); entry != nullptr) {
            septets.push_back(entry->septet);
        } else if (const Mapping* extended = Find(kExtension, character); extended != nullptr) {
            septets.push_back(kEscapeSeptet);
            septets.push_back(extended->septet);
        } else {
            septets.push_back(IsForeign(code) ? std::uint8_t{'?'} : code);
        }
    }
    return septets;
}

std::string FromSeptets(const std::vector<std::uint8_t>& septets) {
    std::string text;
    bool escaped = false;
    for (const std::uint8_t septet : septets) {
        if (!escaped && septet == kEscapeSeptet) {
            escaped = true;
            continue;
        }
        const char plain = IsForeign(septet) ? '?' : static_cast<char>(septet);
        text += escaped ? Character(kExtension, septet, plain) : Character(kMoved, septet, plain);
        escaped = false;
    }
    return text;
}

std::vector<std::uint8_t> PackSeptets(const std::vector<std::uint8_t>& septets) {
    std::vector<std::uint8_t> octets((septets.size() * 7 + 7) / 8);
    for (std::size_t place = 0; place < septets.size(); ++place) {
        const std::size_t bit = place * 7;
        const unsigned spread = static_cast<unsigned>(septets[place] & 0x7F) << (bit % 8);
        octets[bit / 8] = static_cast<std::uint8_t>(octets[bit / 8] | (spread & 0xFF));
        if (spread > 0xFF)
            octets[bit / 8 + 1] = static_cast<std::uint8_t>(spread >> 8);
    }
    return octets;
}

std::vector<std::uint8_t> UnpackSeptets(const std::vector<std::uint8_t>& octets,
                                        std::size_t count) {
    const std::size_t available = std::min(count, octets.size() * 8 / 7);
    std::vector<std::uint8_t> septets;
    septets.reserve(available);
    for (std::size_t place = 0; place < available; ++place) {
        const std::size_t bit = place * 7;
        unsigned pair = octets[bit / 8];
        if (bit / 8 + 1 < octets.size())
            pair |= static_cast<unsigned>(octets[bit / 8 + 1]) << 8;
        septets.push_back(static_cast<std::uint8_t>((pair >> (bit % 8)) & 0x7F));
    }
    return septets;
}

} // namespace modemsim
