#include "console/ConsoleGlyphs.h"

#include "platform/terminal/Characters.h"

#include <array>

namespace platform {
namespace {

// Every picture of the code page lies in the first plane; 0x20 to 0x7E are ASCII.
constexpr std::array<char16_t, 0x20> kLowPictures = {
    u' ', u'☺', u'☻', u'♥', u'♦', u'♣', u'♠', u'•', u'◘', u'○', u'◙', u'♂', u'♀', u'♪', u'♫', u'☼',
    u'►', u'◄', u'↕', u'‼', u'¶', u'§', u'▬', u'↨', u'↑', u'↓', u'→', u'←', u'∟', u'↔', u'▲', u'▼'};

constexpr Glyph kLacking = {"?", 1};

constexpr char16_t kHouse = u'⌂'; // 0x7F

constexpr std::array<char16_t, 0x80> kHighPictures = {
    u'Ç', u'ü', u'é', u'â', u'ä', u'à', u'å', u'ç',     u'ê', u'ë', u'è', u'ï', u'î', u'ì', u'Ä',
    u'Å', u'É', u'æ', u'Æ', u'ô', u'ö', u'ò', u'û',     u'ù', u'ÿ', u'Ö', u'Ü', u'¢', u'£', u'¥',
    u'₧', u'ƒ', u'á', u'í', u'ó', u'ú', u'ñ', u'Ñ',     u'ª', u'º', u'¿', u'⌐', u'¬', u'½', u'¼',
    u'¡', u'«', u'»', u'░', u'▒', u'▓', u'│', u'┤',     u'╡', u'╢', u'╖', u'╕', u'╣', u'║', u'╗',
    u'╝', u'╜', u'╛', u'┐', u'└', u'┴', u'┬', u'├',     u'─', u'┼', u'╞', u'╟', u'╚', u'╔', u'╩',
    u'╦', u'╠', u'═', u'╬', u'╧', u'╨', u'╤', u'╥',     u'╙', u'╘', u'╒', u'╓', u'╫', u'╪', u'┘',
    u'┌', u'█', u'▄', u'▌', u'▐', u'▀', u'α', u'ß',     u'Γ', u'π', u'Σ', u'σ', u'µ', u'τ', u'Φ',
    u'Θ', u'Ω', u'δ', u'∞', u'φ', u'ε', u'∩', u'≡',     u'±', u'≥', u'≤', u'⌠', u'⌡', u'÷', u'≈',
    u'°', u'∙', u'·', u'√', u'ⁿ', u'²', u'■', u'\u00A0'};

struct Picture {
    char bytes[3];
    std::uint8_t length;
};

constexpr char16_t CharacterOf(std::size_t byte) {
    if (byte < kLowPictures.size())
        return kLowPictures[byte];
    if (byte < 0x7F)
        return static_cast<char16_t>(byte);
    return byte == 0x7F ? kHouse : kHighPictures[byte - 0x80];
}

constexpr Picture Encode(char16_t character) {
    const auto tail = [](int bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    const int code = character;
    if (code < 0x80)
        return {{static_cast<char>(code), 0, 0}, 1};
    if (code < 0x800)
        return {{static_cast<char>(0xC0 | (code >> 6)), tail(code), 0}, 2};
    return {{static_cast<char>(0xE0 | (code >> 12)), tail(code >> 6), tail(code)}, 3};
}

constexpr auto kPictures = [] {
    std::array<Picture, 256> pictures{};
    for (std::size_t byte = 0; byte < pictures.size(); ++byte)
        pictures[byte] = Encode(CharacterOf(byte));
    return pictures;
}();

} // namespace

Glyph GlyphOf(std::uint8_t byte) {
    const Picture& picture = kPictures[byte];
    return {{picture.bytes, picture.length}, 1};
}

Glyph GlyphOf(const CUtf8Decoder& character, const CCharacterSet& set) {
    const char32_t code = character.Code();
    const auto itself = [&](int columns) {
        return set.Has(character.Bytes()) ? Glyph{character.Bytes(), columns} : kLacking;
    };
    switch (code < 0x80 ? CharacterKind::Control : KindOf(code)) {
    case CharacterKind::Narrow:
        return itself(1);
    case CharacterKind::Wide:
        return itself(2);
    case CharacterKind::Combining:
        return itself(0);
    case CharacterKind::Control:
        return GlyphOf(static_cast<std::uint8_t>(code));
    case CharacterKind::Replaced:
        return kReplacement;
    case CharacterKind::Omitted:
        break;
    }
    return {};
}

} // namespace platform
