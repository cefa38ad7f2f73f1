// The messages of the program as texts that are safe to look at. Any thread may call these.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

namespace debugmodule {

// The text on lines of its own making: a line end at its end is dropped, each one inside begins a
// line indented by four blanks, and every other byte that is no printable ASCII character shows as
// "\r", "\t" or "\x1b", a backslash as two. Of a text 2000 bytes are taken.
std::string MakeSafeText(std::string_view text);

// "error" and "trace", any other level as "level 5".
std::string DescribeLevel(DWORD level);

// The time of day on the system's clock as "2026-11-23 14:05:09.123", local time.
std::string DescribeTime();

} // namespace debugmodule
