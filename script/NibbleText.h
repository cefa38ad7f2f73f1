// Numbers as they stand in the token stream: one character from '0' to '?' for each group of four
// bits, the highest first, leading zero groups left out; so a number holds no NUL.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// At most eight characters; nothing for 0.
std::string EncodeNumber(DWORD value);

// Skips white space, then reads up to the first character that belongs to no number. Of more than
// eight groups the last eight count.
DWORD DecodeNumber(std::string_view text);
