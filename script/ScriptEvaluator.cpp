// How: the stream is read as it is climbed. The operators' levels are climbed in one loop
// (EvalOperators), which binds to the right: 10 - 3 - 2 is 10 - (3 - 2). Before that looks are
// taken at what most expressions are, a literal, a variable, or two of them with an operator
// between; they are done without a call.
#include "script/ScriptEvaluator.h"

#include "script/KeywordTable.h"
#include "script/OperatorLevels.h"
#include "script/ScriptArithmetic.h"
#include "script/ScriptDepth.h"
#include "script/TextParts.h"

#include <algorithm>
#include <utility>

namespace {

constexpr bool IsPrefix(BYTE code) {
    return code == TOKEN_NOT || code == '-' || code == '@' || code == TOKEN_AND;
}

} // namespace

// Most operands are a literal or a variable by itself: its value is taken at once. False, and
// nothing is consumed, where a call, a subscript or an assignment follows, and for all else.
bool CScriptEvaluator::TakePlain(ScriptValue& record) {
    const BYTE code = m_Reader.Peek();
    if (!HasInlineText(code))
        return false;
    const auto [payload, behind] = m_Reader.PeekText();
    const DWORD next = m_Reader.PositionOfCode(behind);
    const BYTE follower = m_Reader.CodeAt(next);
    if (follower == '(' || follower == '[' || follower == '=')
        return false;
    if (code == TOKEN_NUMBER) {
        record.word = ScriptWord::Integer(payload);
    } else if (code == TOKEN_NAME) {
        const DWORD symbol = m_Symbols.FindVisible(static_cast<DWORD>(payload), record.floor);
        const ScriptSymbol& entry = m_Symbols[symbol];
        if (entry.size == kSizeFunction || entry.elements > 0)
            return false;
        // In two parts: as a whole the processor would have to wait for a word that was stored in
        // two (measured: a call took a third longer).
        record.word.value = entry.word.value;
        record.word.text = entry.word.text;
        record.size = entry.size;
        record.depth = entry.depth;
    } else {
        record.word = ScriptWord::Text(CScriptMemory::AreaLocation(m_Reader.Position() + 1));
    }
    if (m_nSkip > 0)
        record.word = ScriptWord::Integer(1);
    m_Reader.Seek(next);
    return true;
}

// Whether an operator of the level or a tighter one follows.
bool CScriptEvaluator::IsOperatorNext(BYTE level) {
    return kOperatorLevels[m_Reader.Peek()] >= level;
}

// Most expressions with an operator are two plain values of one kind with it between them. False,
// and nothing is consumed, for all else.
[[gnu::always_inline]] inline bool CScriptEvaluator::EvalPlainPair(ScriptValue& left) {
    const BYTE operation = m_Reader.Peek();
    // Texts are joined elsewhere, and where it is too deep is found out there.
    if (left.word.text && (operation == '+' || m_nDepth == CScriptDepth::kMostLevels))
        return false;
    const DWORD start = m_Reader.Position();
    m_Reader.Take();
    ScriptValue right(left.floor);
    if (!TakePlain(right) || right.word.text != left.word.text || IsOperatorNext(kLoosestLevel)) {
        m_Reader.Seek(start);
        return false;
    }
    Apply(left, operation, right, start + 1);
    return true;
}

// The right side of an assignment, which is part of the expression.
ScriptWord CScriptEvaluator::EvaluateRight(DWORD floor) {
    if (HasError())
        return {};
    ScriptValue record(floor);
    if (!TakePlain(record)) {
        EvalAssign(record);
        if (!HasError())
            LoadValue(record);
    } else if (IsOperatorNext(kLoosestLevel) && !EvalPlainPair(record)) {
        EvalOperators(record, kLoosestLevel);
        if (!HasError() && m_Reader.Peek() == '=')
            EvalAssignment(record);
    }
    if (HasError())
        return {};
    return {record.word.value, record.word.text}; // in two parts, as above
}

// What a dereference in an expression means for an assignment ends with the expression.
ScriptWord CScriptEvaluator::Evaluate(DWORD floor) {
    const bool isAround = std::exchange(m_bNoCopy, false);
    const ScriptWord word = EvaluateRight(floor);
    m_bNoCopy = isAround;
    return word;
}

// A statement that does no more than assign to a plain variable. False, and nothing is consumed,
// for any other.
bool CScriptEvaluator::AssignPlain(DWORD floor) {
    const auto [payload, behind] = m_Reader.PeekText();
    const DWORD position = m_Reader.PositionOfCode(behind);
    if (m_Reader.CodeAt(position) != '=' || m_nSkip > 0)
        return false;
    ScriptValue target(floor);
    target.symbol = m_Symbols.FindVisible(static_cast<DWORD>(payload), floor);
    if (m_Symbols[target.symbol].size == kSizeFunction || m_Symbols[target.symbol].elements > 0)
        return false;
    m_Reader.Seek(position + 1);
    const ScriptWord word = EvaluateRight(floor);
    if (HasError())
        return true;
    target.isLocation = true;
    if (word.text)
        Assign(target, word, position);
    else
        m_Symbols[target.symbol].word = word;
    return true;
}

// The first operand stays a place, which "=" may assign to.
void CScriptEvaluator::EvalAssign(ScriptValue& record) {
    EvalUnary(record);
    if (!HasError() && IsOperatorNext(kLoosestLevel))
        EvalOperators(record, kLoosestLevel);
    if (!HasError() && m_Reader.Peek() == '=')
        EvalAssignment(record);
}

void CScriptEvaluator::EvalAssignment(ScriptValue& target) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    do {
        const DWORD position = m_Reader.Position();
        m_Reader.Take();
        const ScriptWord word = EvaluateRight(target.floor);
        if (!HasError() && m_nSkip == 0)
            Assign(target, word, position);
    } while (!HasError() && m_Reader.Peek() == '=');
}

// Climbs from a level to the tighter ones in one loop. Having called itself for the right operand,
// it meets looser operators only; so each level is right-associative.
void CScriptEvaluator::EvalOperators(ScriptValue& left, BYTE level) {
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
        if (operation == '+' && left.word.text)
            Concatenate(left, position);
        else
            EvalOperator(left, operation, position);
    } while (!HasError() && IsOperatorNext(level));
}

// A call on the right may assign to the variable that a left text is of: it is held meanwhile.
void CScriptEvaluator::EvalOperator(ScriptValue& left, BYTE operation, DWORD position) {
    ScriptValue right(left.floor);
    const bool isHeld = left.word.text;
    if (isHeld)
        m_Arguments.push_back(left.word);
    EvalOperand(right, kOperatorLevels[operation]);
    if (HasError())
        return;
    LoadValue(right);
    if (isHeld) {
        left.word = m_Arguments.back();
        m_Arguments.pop_back();
    }
    if (!HasError())
        Apply(left, operation, right, position);
}

// An operand and what binds it tighter than, or as tight as, an operator of the level.
void CScriptEvaluator::EvalOperand(ScriptValue& record, BYTE level) {
    if (!TakePlain(record))
        EvalUnary(record);
    if (!HasError() && IsOperatorNext(level))
        EvalOperators(record, level);
}

void CScriptEvaluator::Apply(ScriptValue& left, BYTE operation, const ScriptValue& right,
                             DWORD position) {
    if (left.word.text && (operation == TOKEN_EQ || operation == TOKEN_NE)) {
        const std::int32_t order = Order(left.word, right.word, position);
        return left.BecomeInteger(operation == TOKEN_EQ ? order == 0 : order);
    }
    const DWORD error = ApplyOperator(left, operation, right);
    // A division by zero is told by the line where the right operand begins.
    if (error != 0)
        ReportAt(error, error == ERR_DIVIDE ? m_Reader.PositionOfCode(position) + 1 : position);
}

// The left text is copied before the right operand is evaluated, which may change what it was.
void CScriptEvaluator::Concatenate(ScriptValue& left, DWORD position) {
    const DWORD buffer = AllocTextBuffer();
    if (buffer == 0)
        return;
    const std::string_view first = ReadText(left.word);
    if (HasError())
        return;
    m_Area.StoreText(buffer, first);
    const DWORD length = std::min(static_cast<DWORD>(first.size()), CScriptArea::kTextLength);
    ScriptValue right(left.floor);
    EvalOperand(right, kOperatorLevels['+']);
    if (!HasError())
        LoadValue(right);
    if (HasError())
        return;
    if (!right.word.text)
        return ReportAt(ERR_SYNTAX, position);
    m_Area.StoreText(buffer + length, ReadText(right.word), CScriptArea::kTextLength - length);
    left.word = ScriptWord::Text(CScriptMemory::AreaLocation(buffer));
}

std::int32_t CScriptEvaluator::Order(const ScriptWord& left, const ScriptWord& right,
                                     DWORD position) {
    if (!right.text) {
        ReportAt(ERR_SYNTAX, position);
        return 0;
    }
    const std::string_view first = ReadText(left);
    const std::string_view second = ReadText(right);
    return HasError() ? 0 : CompareTexts(first, second);
}

void CScriptEvaluator::EvalUnary(ScriptValue& record) {
    const BYTE code = m_Reader.NextToken();
    if (code == TOKEN_NAME)
        EvalName(record);
    else if (code == TOKEN_NUMBER)
        EvalNumber(record);
    else if (IsPrefix(code))
        return EvalPrefixed(record, code);
    else
        EvalPrimary(record, code);
    if (HasError())
        return;
    const BYTE next = m_Reader.Peek();
    if (next == '(')
        EvalCall(record);
    else if (next == '[')
        EvalSubscript(record);
}

void CScriptEvaluator::EvalPrefixed(ScriptValue& record, BYTE code) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (code == '@')
        return Dereference(record);
    if (code == TOKEN_AND)
        return EvalLocationOf(record);
    EvalUnary(record);
    if (!HasError())
        LoadValue(record);
    const std::int32_t value = record.word.value;
    record.BecomeInteger(code == TOKEN_NOT ? value == 0
                                           : static_cast<std::int32_t>(0 - record.word.Location()));
}

void CScriptEvaluator::Dereference(ScriptValue& record) {
    const DWORD position = m_Reader.Position();
    if (m_nSkip == 0)
        m_bNoCopy = true;
    EvalUnary(record);
    if (!HasError())
        LoadValue(record);
    if (HasError())
        return;
    if (record.depth == 0)
        return ReportAt(ERR_POINTER, position);
    if (record.size != kSizeCharacter && record.size != kSizeWord)
        return ReportAt(ERR_SYNTAX, position);
    --record.depth;
    if (record.depth > 0)
        record.size = kSizeWord;
    record.isLocation = true;
    record.symbol = 0;
    record.elements = 0;
}

void CScriptEvaluator::EvalLocationOf(ScriptValue& record) {
    const DWORD position = m_Reader.Position();
    EvalUnary(record);
    if (HasError())
        return;
    if (!record.isLocation)
        return ReportAt(ERR_SYNTAX, position);
    const DWORD location =
        record.symbol != 0 ? CScriptMemory::SymbolLocation(record.symbol) : record.word.Location();
    record.BecomeInteger(static_cast<std::int32_t>(location));
}

void CScriptEvaluator::EvalPrimary(ScriptValue& record, BYTE code) {
    if (code == TOKEN_LITERAL) {
        record.BecomePlain(ScriptWord::Text(CScriptMemory::AreaLocation(m_Reader.Position())));
        m_Reader.SkipText();
    } else if (code == '(') {
        EvalParenthesized(record);
    } else {
        ReportError(ERR_OUT_OF_PLACE, TokenName(code));
    }
}

void CScriptEvaluator::EvalParenthesized(ScriptValue& record) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    EvalAssign(record);
    if (!HasError())
        m_Reader.Expect(')');
}

void CScriptEvaluator::EvalNumber(ScriptValue& record) {
    record.BecomeInteger(m_Reader.Number());
    m_Reader.SkipText();
}

void CScriptEvaluator::EvalName(ScriptValue& record) {
    const DWORD symbol = m_Symbols.LookupName(m_Reader.Name(), record.floor);
    if (symbol == 0)
        return;
    m_Reader.SkipText();
    const ScriptSymbol& entry = m_Symbols[symbol];
    const bool isTextArray = entry.elements > 0 && entry.depth >= 2 && entry.size == kSizeCharacter;
    if (isTextArray && m_Reader.Peek() != '[')
        return ReportError(ERR_SYNTAX);
    record.size = entry.size;
    record.depth = entry.depth;
    record.elements = entry.elements;
    record.symbol = symbol;
    record.isLocation = true;
}

void CScriptEvaluator::EvalSubscript(ScriptValue& record) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (record.depth < 2 && record.size != kSizeWord)
        return ReportError(ERR_SYNTAX);
    m_Reader.Take();
    const std::int32_t index = Evaluate(record.floor).value;
    if (HasError())
        return;
    if (record.elements == 0)
        return ReportError(ERR_NOT_ARRAY);
    if (index < 1 || index > record.elements)
        return ReportError(ERR_BOUND);
    m_Reader.Expect(']');
    if (!HasError())
        LoadValue(record);
    if (HasError())
        return;
    if (record.depth == 0)
        return ReportError(ERR_SYNTAX);
    BecomeElement(record, static_cast<DWORD>(index - 1));
}

// An array's first element becomes the one so many behind it.
void CScriptEvaluator::BecomeElement(ScriptValue& record, DWORD index) {
    --record.depth;
    const DWORD size = record.size == kSizeCharacter && record.depth == 0 ? 1 : 4;
    record.word =
        ScriptWord::Integer(static_cast<std::int32_t>(record.word.Location() + size * index));
    record.isLocation = true;
    record.symbol = 0;
    record.elements = 0;
}
