#include "platform/terminal/Characters.h"

#include <utf8proc.h>

#include <cstdint>

namespace platform {
namespace {

struct Range {
    char32_t first;
    char32_t last;
    CharacterKind kind;
};

// Before the general rules. Joiners and variation selectors glue or widen what stands before them
// on some terminals and do nothing on others.
constexpr Range SPECIAL[] = {
    {0x0080, 0x009F, CharacterKind::CONTROL},
    {0x1160, 0x11FF, CharacterKind::COMBINING}, // Hangul vowels and finals, joined to their initial
    {0x200C, 0x200C, CharacterKind::COMBINING}, // zero width non-joiner: spelling of some scripts
    {0x200D, 0x200D, CharacterKind::OMITTED},   // zero width joiner
    {0x2028, 0x2029, CharacterKind::REPLACED},  // line and paragraph separator
    {0xD7B0, 0xD7FF, CharacterKind::COMBINING}, // more Hangul vowels and finals
    {0xFDD0, 0xFDEF, CharacterKind::REPLACED},  // no characters, for ever
    {0xFE00, 0xFE0F, CharacterKind::OMITTED},   // variation selectors
    {0xE0100, 0xE01EF, CharacterKind::OMITTED}, // and their supplement
};

} // namespace

CharacterKind KindOf(char32_t character) {
    for (const Range& range : SPECIAL) {
        if (character >= range.first && character <= range.last)
            return range.kind;
    }
    if ((character & 0xFFFE) == 0xFFFE) // the last two of each plane are no characters
        return CharacterKind::REPLACED;
    const auto code = static_cast<utf8proc_int32_t>(character);
    // Direction marks, invisible operators, tags: nothing of the text shows that they are there.
    if (utf8proc_category(code) == UTF8PROC_CATEGORY_CF)
        return CharacterKind::REPLACED;
    switch (utf8proc_charwidth(code)) {
    case 0:
        return CharacterKind::COMBINING;
    case 1:
        return CharacterKind::NARROW;
    default:
        return CharacterKind::WIDE;
    }
}

CharacterKind KindOf(const CUtf8Decoder& character, const CCharacterSet& set) {
    const CharacterKind kind = KindOf(character.Code());
    const bool isDrawn = kind == CharacterKind::NARROW || kind == CharacterKind::WIDE ||
                         kind == CharacterKind::COMBINING;
    return isDrawn && !set.Has(character.Bytes()) ? CharacterKind::LACKING : kind;
}

} // namespace platform
