// The decimal conversion of the C library, for text of any length and content.
#pragma once

#include <string_view>

// Leading white space is skipped, an optional sign is taken, then digits up to the first character
// that is none. No digits give 0; a value beyond 32 bits gives the nearest 32-bit value.
int ParseDecimal(std::string_view text);
