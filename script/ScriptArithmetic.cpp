#include "script/ScriptArithmetic.h"

#include "script/ScriptError.h"
#include "script/TokenCodes.h"

namespace {

// The size of what a left operand refers to, by which the right one is scaled.
std::int32_t Scale(const ScriptValue& value) {
    if (value.depth == 0)
        return 1;
    return value.depth > 1 || value.size == kSizeWord ? 4 : 1;
}

constexpr std::int32_t Wrap(DWORD value) {
    return static_cast<std::int32_t>(value);
}
constexpr DWORD Bits(std::int32_t value) {
    return static_cast<DWORD>(value);
}

// The right operand as far as it moves the left one, what that refers to being as large as it is.
DWORD Moved(const ScriptValue& left, const ScriptValue& right) {
    return Bits(Scale(left)) * Bits(right.word.value);
}

DWORD Become(ScriptValue& left, std::int32_t result) {
    left.BecomeInteger(result);
    return 0;
}

// Out of line, as division: without them sums and comparisons need no frame.
[[gnu::noinline]] DWORD Subtract(ScriptValue& left, const ScriptValue& right) {
    if (left.depth == 0 || right.depth == 0) {
        left.word = ScriptWord::Integer(Wrap(Bits(left.word.value) - Moved(left, right)));
        return 0;
    }
    if (left.depth != right.depth)
        return ERR_POINTER;
    return Become(left, Wrap(left.word.Location() - right.word.Location()) / Scale(left));
}

[[gnu::noinline]] DWORD Divide(ScriptValue& left, BYTE operation, std::int32_t divisor) {
    const std::int32_t dividend = left.word.value;
    if (divisor == 0)
        return ERR_DIVIDE;
    // The one quotient that does not fit wraps, and leaves nothing.
    if (divisor == -1)
        return Become(left, operation == '/' ? Wrap(0 - Bits(dividend)) : 0);
    return Become(left, operation == '/' ? dividend / divisor : dividend % divisor);
}

} // namespace

DWORD ApplyOperator(ScriptValue& left, BYTE operation, const ScriptValue& right) {
    const std::int32_t first = left.word.value;
    const std::int32_t second = right.word.value;
    switch (operation) {
    case '+':
        left.word = ScriptWord::Integer(Wrap(Bits(first) + Moved(left, right)));
        return 0;
    case '-':
        return Subtract(left, right);
    case TOKEN_EQ:
        return Become(left, first == second);
    case TOKEN_NE:
        return Become(left, first != second);
    case '<':
        return Become(left, first < second);
    case '>':
        return Become(left, first > second);
    case TOKEN_LE:
        return Become(left, first <= second);
    case TOKEN_GE:
        return Become(left, first >= second);
    case TOKEN_OR:
        return Become(left, first != 0 || second != 0);
    case TOKEN_AND:
        return Become(left, first != 0 && second != 0);
    case '*':
        return Become(left, Wrap(Bits(first) * Bits(second)));
    default:
        return Divide(left, operation, second);
    }
}
