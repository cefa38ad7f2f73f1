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
constexpr Range kSpecial[] = {
    {0x0080, 0x009F, CharacterKind::Control},
    {0x1160, 0x11FF, CharacterKind::Combining}, // Hangul vowels and finals, joined to their initial
    {0x200C, 0x200C, CharacterKind::Combining}, // zero width non-joiner: spelling of some scripts
    {0x200D, 0x200D, CharacterKind::Omitted},   // zero width joiner
    {0x2028, 0x2029, CharacterKind::Replaced},  // line and paragraph separator
    {0xD7B0, 0xD7FF, CharacterKind::Combining}, // more Hangul vowels and finals
    {0xFDD0, 0xFDEF, CharacterKind::Replaced},  // no characters, for ever
    {0xFE00, 0xFE0F, CharacterKind::Omitted},   // variation selectors
    {0xE0100, 0xE01EF, CharacterKind::Omitted}, // and their supplement
};

} // namespace

CharacterKind KindOf(char32_t character) {
    for (const Range& range : kSpecial) {
        if (character >= range.first && character <= range.last)
            return range.kind;
    }
    if ((character & 0xFFFE) == 0xFFFE) // the last two of each plane are no characters
        return CharacterKind::Replaced;
    const auto code = static_cast<utf8proc_int32_t>(character);
    // Direction marks, invisible operators, tags: nothing of the text shows that they are there.
    if (utf8proc_category(code) == UTF8PROC_CATEGORY_CF)
        return CharacterKind::Replaced;
    switch (utf8proc_charwidth(code)) {
    case 0:
        return CharacterKind::Combining;
    case 1:
        return CharacterKind::Narrow;
    default:
        return CharacterKind::Wide;
    }
}

} // namespace platform
