// How a character is drawn on a terminal whose cursor must stay known: how many columns it takes,
// and which characters may not go out as they are. Pure; any thread may call this.
#pragma once

namespace platform {

enum class CharacterKind {
    Narrow,    // one column
    Wide,      // two columns
    Combining, // joins the character before it
    Control,   // U+0080 to U+009F: drawn as the picture of that byte
    Replaced,  // would mislead the reader or move the cursor: drawn as U+FFFD
    Omitted,   // terminals disagree on its width, and the text reads the same without it
};

// The kind of a character from U+0080 on.
CharacterKind KindOf(char32_t character);

} // namespace platform
