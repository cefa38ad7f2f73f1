// Names come from files, arguments and other processes: before one is printed past the console,
// nothing in it may act on a terminal. No state: any thread may call this.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The text as well-formed UTF-8 that a terminal draws as it stands: '?' for every byte that is no
// UTF-8 and for each byte of a control character, U+0080 to U+009F included, of a mark that changes
// the direction of what is read, and of what is no character. What only changes how its neighbour
// looks is left out.
// It is printed in the locale's character set, which platform/terminal/CharacterSet.h makes of it.
std::string PrintableText(std::string_view text);

} // namespace platform
