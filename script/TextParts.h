// Parts of texts, their order, and the numbers in them: what the built-ins for texts compute.
//
// Pure functions. Bytes are characters; a number that a text has no place for, negative or beyond
// its end, counts as the nearest one that it has, unless told otherwise. Parts point into the given
// text.
#pragma once

#include "platform/Types.h"

#include <string_view>

std::string_view LeftOf(std::string_view text, std::int32_t count);
std::string_view RightOf(std::string_view text, std::int32_t count);

// From the 0-based start; nothing when that is negative or beyond the end.
std::string_view MiddleOf(std::string_view text, std::int32_t start, std::int32_t count);

// -1, 0 or 1 as the first sorts before, equal to or after the second by unsigned bytes; the second
// one takes A to Z as a to z.
std::int32_t CompareTexts(std::string_view first, std::string_view second);
std::int32_t CompareTextsIgnoringCase(std::string_view first, std::string_view second);

// The 0-based position of the first occurrence, or -1.
std::int32_t FindText(std::string_view text, std::string_view wanted);

// White space, then an optional sign, then decimal digits up to the first other character; 0
// without digits. Wraps as the script's own numbers do.
std::int32_t NumberOf(std::string_view text);
