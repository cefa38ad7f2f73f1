// What is drawn for a character and for a byte that is none: on the screen, in boxes, everywhere.
// The pictures are those of code page 437, which a console shows for a byte that is no text.
// Constant data; any thread may call this.
#pragma once

#include "platform/terminal/CharacterSet.h"
#include "platform/terminal/Utf8.h"

#include <cstdint>
#include <string_view>

namespace platform {

struct Glyph {
    std::string_view text; // UTF-8 that a terminal draws as it stands; empty: nothing
    int columns = 0;       // 0: it joins the character before it
};

// Stands for what cannot be shown, one column wide: U+FFFD.
inline constexpr Glyph kReplacement = {"\xEF\xBF\xBD", 1};

// The picture of a byte, 1 to 3 bytes, one column wide; a blank for 0.
Glyph GlyphOf(std::uint8_t byte);

// What stands for a character on a terminal of a character set: itself where it is text, "?" where
// the set lacks it. It lives as long as the decoder holds the character.
Glyph GlyphOf(const CUtf8Decoder& character, const CCharacterSet& set);

} // namespace platform
