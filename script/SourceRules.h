// What a script's source is made of: the characters of its words, its escapes, operators of two
// characters, and what each keyword does to the blocks around it.
//
// Constant tables, shared by the tokenizer and the check; any thread may look.
#pragma once

#include "common/Ascii.h"
#include "platform/Types.h"
#include "script/NestStack.h"
#include "script/TokenCodes.h"

#include <array>
#include <string_view>

constexpr bool IsLetter(BYTE character) {
    const BYTE lower = character | 0x20;
    return lower >= 'a' && lower <= 'z';
}

constexpr bool IsNameStart(BYTE character) {
    return IsLetter(character) || character == '_' || character == ':' || character == '#' ||
           character == '$';
}

constexpr bool IsWordCharacter(BYTE character) {
    return IsNameStart(character) || IsDigit(character);
}

// 16 for what is no hexadecimal digit.
constexpr BYTE HexValue(BYTE character) {
    if (IsDigit(character))
        return static_cast<BYTE>(character - '0');
    const BYTE lower = character | 0x20;
    return lower >= 'a' && lower <= 'f' ? static_cast<BYTE>(lower - 'a' + 10) : BYTE{16};
}

// A word of decimal digits, or of hexadecimal ones behind "0x"; wraps. False for any other word.
constexpr bool ReadNumber(std::string_view word, DWORD& value) {
    const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
    const DWORD base = isHexadecimal ? 16 : 10;
    value = 0;
    for (const char character : word.substr(isHexadecimal ? 2 : 0)) {
        const BYTE digit = HexValue(static_cast<BYTE>(character));
        if (digit >= base)
            return false;
        value = value * base + digit;
    }
    return true;
}

inline constexpr std::string_view kEscapes = "ntfabrv\"'?\\";
inline constexpr std::string_view kEscaped = "\n\t\f\a\b\r\v\"'?\\";

// Two characters that are one operator.
struct PairRow {
    BYTE first;
    BYTE second;
    BYTE code;
};
inline constexpr std::array<PairRow, 3> kPairs = {{
    {'<', '>', TOKEN_NE},
    {'<', '=', TOKEN_LE},
    {'>', '=', TOKEN_GE},
}};

struct BlockRule {
    enum class Nesting : BYTE { Nothing, Push, Pop };

    BYTE code;
    Nesting nesting;
    ENestKind kind;
    bool closesBlock;
    bool opensBlock; // at the end of its line
};
inline constexpr std::array<BlockRule, 13> kBlockRules = {{
    {TOKEN_IF, BlockRule::Nesting::Push, NEST_IF, false, true},
    {TOKEN_ELSEIF, BlockRule::Nesting::Nothing, NEST_IF, true, true},
    {TOKEN_ELSE, BlockRule::Nesting::Nothing, NEST_IF, true, true},
    {TOKEN_CASE, BlockRule::Nesting::Nothing, NEST_SELECT, true, true},
    {TOKEN_FOR, BlockRule::Nesting::Push, NEST_FOR, false, true},
    {TOKEN_WHILE, BlockRule::Nesting::Push, NEST_WHILE, false, true},
    {TOKEN_SELECT, BlockRule::Nesting::Push, NEST_SELECT, false, true},
    {TOKEN_FUNCTION, BlockRule::Nesting::Push, NEST_FUNCTION, false, true},
    {TOKEN_ENDIF, BlockRule::Nesting::Pop, NEST_IF, true, false},
    {TOKEN_NEXT, BlockRule::Nesting::Pop, NEST_FOR, true, false},
    {TOKEN_WEND, BlockRule::Nesting::Pop, NEST_WHILE, true, false},
    {TOKEN_ENDSELECT, BlockRule::Nesting::Pop, NEST_SELECT, true, false},
    {TOKEN_ENDFUNCTION, BlockRule::Nesting::Pop, NEST_FUNCTION, true, false},
}};
