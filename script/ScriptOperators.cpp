// The binary operators. They bind to the right: 10 - 3 - 2 is 10 - (3 - 2).
#include "script/Script.h"

#include "script/OperatorLevels.h"
#include "script/ScriptDepth.h"

#include <algorithm>

namespace {

// The size of what a left operand refers to, by which the right one is scaled.
std::int32_t Scale(const ScriptValue& value) {
    if (value.depth == 0)
        return 1;
    return value.depth > 1 || value.size == SIZE_WORD ? 4 : 1;
}

// Integers wrap.
constexpr std::int32_t Wrap(DWORD value) {
    return static_cast<std::int32_t>(value);
}
constexpr DWORD Bits(std::int32_t value) {
    return static_cast<DWORD>(value);
}

} // namespace

// Whether an operator of the level or a tighter one follows.
bool CVScript::IsOperatorNext(BYTE level) {
    return g_OperatorLevels[m_Reader.Peek()] >= level;
}

// Climbs from a level to the tighter ones in one loop. Having called itself for the right operand,
// it meets looser operators only; so each level is right-associative.
void CVScript::EvalOperators(ScriptValue& left, BYTE level) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    do {
        const BYTE operation = m_Reader.Peek();
        m_Reader.Take();
        const DWORD position = m_Reader.Position();
        LoadValue(left);
        if (HasError())
            return;
        if (operation == '+' && left.word.text) {
            Concatenate(left, position);
            continue;
        }
        ScriptValue right(left.floor);
        // A call on the right may assign to the variable that the left text is of.
        const bool isHeld = left.word.text;
        if (isHeld)
            m_Arguments.push_back(left.word);
        EvalOperand(right, g_OperatorLevels[operation]);
        if (HasError())
            return;
        LoadValue(right);
        if (isHeld) {
            left.word = m_Arguments.back();
            m_Arguments.pop_back();
        }
        if (!HasError())
            Apply(left, operation, right, position);
    } while (!HasError() && IsOperatorNext(level));
}

// An operand and what binds it tighter than, or as tight as, an operator of the level.
void CVScript::EvalOperand(ScriptValue& record, BYTE level) {
    if (!TakePlain(record))
        EvalUnary(record);
    if (!HasError() && IsOperatorNext(level))
        EvalOperators(record, level);
}

void CVScript::Apply(ScriptValue& left, BYTE operation, const ScriptValue& right, DWORD position) {
    const std::int32_t first = left.word.value;
    const std::int32_t second = right.word.value;
    switch (operation) {
    case '+':
        left.word = ScriptWord::Integer(Wrap(Bits(first) + Bits(Scale(left)) * Bits(second)));
        return;
    case '-':
        if (left.depth > 0 && right.depth > 0)
            return Subtract(left, right, position);
        left.word = ScriptWord::Integer(Wrap(Bits(first) - Bits(Scale(left)) * Bits(second)));
        return;
    case TOKEN_EQ:
        if (left.word.text)
            return left.BecomeInteger(Order(left.word, right.word, position) == 0);
        return left.BecomeInteger(first == second);
    case TOKEN_NE:
        if (left.word.text)
            return left.BecomeInteger(Order(left.word, right.word, position));
        return left.BecomeInteger(first != second);
    case '<':
        return left.BecomeInteger(first < second);
    case '>':
        return left.BecomeInteger(first > second);
    case TOKEN_LE:
        return left.BecomeInteger(first <= second);
    case TOKEN_GE:
        return left.BecomeInteger(first >= second);
    case TOKEN_OR:
        return left.BecomeInteger(first != 0 || second != 0);
    case TOKEN_AND:
        return left.BecomeInteger(first != 0 && second != 0);
    case '*':
        return left.BecomeInteger(Wrap(Bits(first) * Bits(second)));
    default:
        return left.BecomeInteger(Divide(operation, first, second, position));
    }
}

// The distance of two references, in elements.
void CVScript::Subtract(ScriptValue& left, const ScriptValue& right, DWORD position) {
    if (left.depth != right.depth)
        return ReportAt(ERR_POINTER, position);
    left.BecomeInteger(Wrap(left.word.Location() - right.word.Location()) / Scale(left));
}

// The left text is copied before the right operand is evaluated, which may change what it was.
void CVScript::Concatenate(ScriptValue& left, DWORD position) {
    const DWORD buffer = AllocTextBuffer();
    if (buffer == 0)
        return;
    const std::string_view first = ReadText(left.word);
    if (HasError())
        return;
    const DWORD length = std::min(static_cast<DWORD>(first.size()), CScriptArea::TEXT_BUFFER - 1);
    m_Area.StoreText(buffer, first);
    ScriptValue right(left.floor);
    EvalOperand(right, g_OperatorLevels['+']);
    if (HasError())
        return;
    LoadValue(right);
    if (HasError())
        return;
    if (!right.word.text)
        return ReportAt(ERR_SYNTAX, position);
    const std::string_view second = ReadText(right.word);
    if (HasError())
        return;
    m_Area.StoreText(buffer + length, second, CScriptArea::TEXT_BUFFER - 1 - length);
    left.word = ScriptWord::Text(CScriptMemory::AreaLocation(buffer));
}

std::int32_t CVScript::Divide(BYTE operation, std::int32_t left, std::int32_t right,
                              DWORD position) {
    if (right == 0) {
        // By the line where the right operand begins.
        ReportAt(ERR_DIVIDE, m_Reader.PositionOfCode(position) + 1);
        return 0;
    }
    // The one quotient that does not fit wraps, and leaves nothing.
    if (right == -1)
        return operation == '/' ? Wrap(0 - Bits(left)) : 0;
    return operation == '/' ? left / right : left % right;
}

// -1, 0 or 1 as the left text sorts before, equal to or after the right one.
std::int32_t CVScript::Order(const ScriptWord& left, const ScriptWord& right, DWORD position) {
    if (!right.text) {
        ReportAt(ERR_SYNTAX, position);
        return 0;
    }
    const std::string_view first = ReadText(left);
    const std::string_view second = ReadText(right);
    if (HasError())
        return 0;
    const int order = first.compare(second);
    return (order > 0) - (order < 0);
}
