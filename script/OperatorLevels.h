// The precedence of the binary operators, from the loosest to the tightest; all of a level bind
// alike, to the right. Assignment is looser than these, what stands in front of an operand tighter.
#pragma once

#include "script/TokenCodes.h"

#include <array>

struct OperatorRow {
    BYTE code;
    BYTE level;
};

inline constexpr BYTE kLoosestLevel = 2;

inline constexpr std::array<OperatorRow, 13> kOperators = {{
    {TOKEN_OR, kLoosestLevel},
    {TOKEN_AND, 3},
    {TOKEN_EQ, 4},
    {TOKEN_NE, 4},
    {'<', 5},
    {'>', 5},
    {TOKEN_LE, 5},
    {TOKEN_GE, 5},
    {'+', 6},
    {'-', 6},
    {'*', 7},
    {'/', 7},
    {TOKEN_MOD, 7},
}};

// By code; 0 for what is no operator.
inline constexpr std::array<BYTE, 256> kOperatorLevels = [] {
    std::array<BYTE, 256> levels{};
    for (const OperatorRow& row : kOperators)
        levels[row.code] = row.level;
    return levels;
}();
