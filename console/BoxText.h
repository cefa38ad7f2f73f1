// Text for a box on the screen: any bytes become lines of a given width that can go to a terminal
// as they are.
//
// LF and CR LF end a line, TAB goes to the next multiple of eight columns; every other control
// character and every byte that is no UTF-8 is the picture that code page 437 has for it, what
// would mislead the reader is U+FFFD, as on the console, and what the locale's character set lacks
// is "?". Any thread may call this.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct BoxLine {
    std::string text; // UTF-8 without control characters
    int columns = 0;
};

// A wrapped line takes at most this many bytes, however many characters share a column.
inline constexpr std::size_t kMostBoxLineBytes = 384;

// The lines of a text, at least one, wrapped at blanks where the words allow it. Columns: at least
// 1. A character wider than a line is U+FFFD.
std::vector<BoxLine> WrapText(std::string_view text, int columns,
                              std::size_t bytes = kMostBoxLineBytes);
// The lines of a text as it has them.
std::vector<BoxLine> LinesOf(std::string_view text);

} // namespace platform
