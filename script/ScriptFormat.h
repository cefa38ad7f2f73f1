// The formatter of Sprintf.
//
// A format is copied character by character. A '%' begins a conversion: '-' to put the padding
// behind the value, a width whose first digit 0 makes the padding character '0' and not a space,
// then the kind:
//
//   c    an integer's low byte as a character
//   i    an integer in decimal
//   s    a text
//
// Any other character, '%' among them, stands for itself and takes no value. Padding is added until
// the width is reached; nothing is cut to it.
#pragma once

#include "platform/Types.h"

#include <span>
#include <string>
#include <string_view>

// A value to format: a text or an integer.
struct FormatValue {
    bool isText = false;
    std::int32_t number = 0;
    std::string_view text;
};

// Stores the formatted text, cut at 255 characters; 0. ERR_ARG_COUNT when the format asks for more
// values than there are, ERR_SYNTAX when it asks for a text where an integer is or the other way
// round; behind the cut, too. The text is then of no use.
DWORD FormatScript(std::string_view format, std::span<const FormatValue> values, std::string& text);
