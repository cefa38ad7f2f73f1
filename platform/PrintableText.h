// Names come from files, arguments and other processes: before one is printed past the console,
// nothing in it may act on a terminal. No state: any thread may call this.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The text with '?' for every control character, U+0080 to U+009F in UTF-8 included; every other
// byte stays.
std::string PrintableText(std::string_view text);

} // namespace platform
