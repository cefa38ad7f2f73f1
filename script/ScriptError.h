// The numbers of everything that can be wrong with a script, and their messages.
#pragma once

#include "platform/Types.h"

#include <string>

inline constexpr DWORD ERR_OPEN = 3001;
inline constexpr DWORD ERR_MEMORY = 3002;
inline constexpr DWORD ERR_INVALID_FILE = 3003;
inline constexpr DWORD ERR_EOF = 3004;
inline constexpr DWORD ERR_CHAR = 3005;
inline constexpr DWORD ERR_DUPLICATE = 3006;
inline constexpr DWORD ERR_SYMTAB_FULL = 3007;
inline constexpr DWORD ERR_UNDEFINED = 3008;
inline constexpr DWORD ERR_SYNTAX = 3009;
inline constexpr DWORD ERR_UNMATCHED = 3010;
inline constexpr DWORD ERR_MISSING = 3011;
inline constexpr DWORD ERR_OUT_OF_PLACE = 3012;
inline constexpr DWORD ERR_TOKEN_OVERFLOW = 3013;
inline constexpr DWORD ERR_DIVIDE = 3014;
inline constexpr DWORD ERR_POINTER = 3015;
inline constexpr DWORD ERR_PARAM = 3016;
inline constexpr DWORD ERR_IF = 3017;
inline constexpr DWORD ERR_FOR = 3018;
inline constexpr DWORD ERR_WHILE = 3019;
inline constexpr DWORD ERR_SELECT = 3020;
inline constexpr DWORD ERR_FUNCTION = 3021;
inline constexpr DWORD ERR_STRING_NAME = 3022;
inline constexpr DWORD ERR_BOUND = 3023;
inline constexpr DWORD ERR_NO_DIMENSION = 3024;
inline constexpr DWORD ERR_NO_MAIN = 3025;
inline constexpr DWORD ERR_ESCAPE = 3026;
inline constexpr DWORD ERR_ARG_COUNT = 3027;
inline constexpr DWORD ERR_TOO_MANY = 3028;
inline constexpr DWORD ERR_NOT_ARRAY = 3029;

// The message of a code; "Unknown Error" and the number for one that is not among them.
std::string ErrorText(DWORD code);
