// The words of the language and what each is in the token stream.
//
// Constant tables; any thread may look. Nothing can fail.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// The code of the keyword that is spelled exactly so; 0 when the word is none.
BYTE FindKeyword(std::string_view word);

// Whether the byte is a delimiter; the one that stands for the end of the file is too.
bool IsDelimiter(BYTE character);

// How a code is named in a report: the first keyword that has it, else the code as a character.
std::string TokenName(BYTE code);
