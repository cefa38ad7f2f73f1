// How a character is drawn on a terminal whose cursor must stay known: how many columns it takes,
// and which characters may not go out as they are. Pure; any thread may call this.
#pragma once

#include "platform/terminal/CharacterSet.h"
#include "platform/terminal/Utf8.h"

namespace platform {

enum class CharacterKind {
    NARROW,    // one column
    WIDE,      // two columns
    COMBINING, // joins the character before it
    CONTROL,   // U+0080 to U+009F: drawn as the picture of that byte
    REPLACED,  // would mislead the reader or move the cursor: drawn as U+FFFD
    OMITTED,   // terminals disagree on its width, and the text reads the same without it
    LACKING,   // not in the terminal's character set: one column, LACKING in its place
};

inline constexpr std::string_view LACKING = "?";

// The kind of a character from U+0080 on.
CharacterKind KindOf(char32_t character);
// The same on a terminal of a character set.
CharacterKind KindOf(const CUtf8Decoder& character, const CCharacterSet& set);

} // namespace platform
