// The pictures of code page 437: what a console shows for a byte that is no text. Constant data;
// any thread may call this.
#pragma once

#include <cstdint>
#include <string_view>

namespace platform {

// The picture of a byte as UTF-8, 1 to 3 bytes, one column wide; a blank for 0.
std::string_view PictureOf(std::uint8_t byte);

// U+FFFD, which stands for what cannot be shown.
inline constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";

} // namespace platform
