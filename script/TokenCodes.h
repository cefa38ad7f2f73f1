// The codes of the token stream: one byte each, so that the stream is read without decoding.
//
// A delimiter's code is the delimiter itself. TOKEN_NUMBER, TOKEN_NAME and TOKEN_LITERAL are
// followed by a text and a NUL.
#pragma once

#include "platform/Types.h"

inline constexpr BYTE TOKEN_EOL = 0x7F;
inline constexpr BYTE TOKEN_EOF = 0xFF;

inline constexpr BYTE TOKEN_STRING = 'c';
inline constexpr BYTE TOKEN_INTEGER = 'l';
inline constexpr BYTE TOKEN_FUNCTION = 'u';
inline constexpr BYTE TOKEN_ENDFUNCTION = 'g';
inline constexpr BYTE TOKEN_RETURN = 'h';
inline constexpr BYTE TOKEN_IF = 'i';
inline constexpr BYTE TOKEN_THEN = 't';
inline constexpr BYTE TOKEN_ELSEIF = 'k';
inline constexpr BYTE TOKEN_ELSE = 'e';
inline constexpr BYTE TOKEN_ENDIF = 'd';
inline constexpr BYTE TOKEN_FOR = 'f';
inline constexpr BYTE TOKEN_TO = 'o';
inline constexpr BYTE TOKEN_STEP = 'p';
inline constexpr BYTE TOKEN_NEXT = 'n';
inline constexpr BYTE TOKEN_EXITFOR = 'm';
inline constexpr BYTE TOKEN_WHILE = 'w';
inline constexpr BYTE TOKEN_WEND = 'z';
inline constexpr BYTE TOKEN_EXITWHILE = 'q';
inline constexpr BYTE TOKEN_SELECT = 's';
inline constexpr BYTE TOKEN_CASE = 'a';
inline constexpr BYTE TOKEN_DEFAULT = 'j';
inline constexpr BYTE TOKEN_ENDSELECT = 'x';
inline constexpr BYTE TOKEN_GOTO = 'X';

inline constexpr BYTE TOKEN_AND = '&';
inline constexpr BYTE TOKEN_OR = 0x7C;
inline constexpr BYTE TOKEN_NOT = '!';
inline constexpr BYTE TOKEN_MOD = '%';
inline constexpr BYTE TOKEN_EQ = 'E';
inline constexpr BYTE TOKEN_NE = 'N';
inline constexpr BYTE TOKEN_LE = 'L';
inline constexpr BYTE TOKEN_GE = 'G';

inline constexpr BYTE TOKEN_NUMBER = 'C';
inline constexpr BYTE TOKEN_NAME = 'I';
inline constexpr BYTE TOKEN_LITERAL = 'S';

constexpr bool HasInlineText(BYTE code) {
    return code == TOKEN_NUMBER || code == TOKEN_NAME || code == TOKEN_LITERAL;
}
