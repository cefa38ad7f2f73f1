// Operands: what may stand in front of one, names, literals, calls and subscripts.
#include "script/Script.h"

#include "script/KeywordTable.h"
#include "script/ScriptDepth.h"

namespace {

constexpr bool IsPrefix(BYTE code) {
    return code == TOKEN_NOT || code == '-' || code == '@' || code == TOKEN_AND;
}

} // namespace

void CVScript::EvalUnary(ScriptValue& record) {
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

void CVScript::EvalPrefixed(ScriptValue& record, BYTE code) {
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

void CVScript::Dereference(ScriptValue& record) {
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
    if (record.size != SIZE_CHARACTER && record.size != SIZE_WORD)
        return ReportAt(ERR_SYNTAX, position);
    --record.depth;
    if (record.depth > 0)
        record.size = SIZE_WORD;
    record.isLocation = true;
    record.symbol = 0;
    record.elements = 0;
}

void CVScript::EvalLocationOf(ScriptValue& record) {
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

void CVScript::EvalPrimary(ScriptValue& record, BYTE code) {
    if (code == TOKEN_LITERAL) {
        record.BecomePlain(ScriptWord::Text(CScriptMemory::AreaLocation(m_Reader.Position())));
        m_Reader.SkipText();
    } else if (code == '(') {
        EvalParenthesized(record);
    } else {
        ReportError(ERR_OUT_OF_PLACE, TokenName(code));
    }
}

void CVScript::EvalParenthesized(ScriptValue& record) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    EvalAssign(record);
    if (!HasError())
        m_Reader.Expect(')');
}

void CVScript::EvalNumber(ScriptValue& record) {
    record.BecomeInteger(m_Reader.Number());
    m_Reader.SkipText();
}

void CVScript::EvalName(ScriptValue& record) {
    const DWORD symbol = m_Symbols.LookupName(m_Reader.Name(), record.floor);
    if (symbol == 0)
        return;
    m_Reader.SkipText();
    const ScriptSymbol& entry = m_Symbols[symbol];
    const bool isTextArray = entry.elements > 0 && entry.depth >= 2 && entry.size == SIZE_CHARACTER;
    if (isTextArray && m_Reader.Peek() != '[')
        return ReportError(ERR_SYNTAX);
    record.size = entry.size;
    record.depth = entry.depth;
    record.elements = entry.elements;
    record.symbol = symbol;
    record.isLocation = true;
}

void CVScript::EvalCall(ScriptValue& record) {
    if (m_nSkip > 0) {
        m_Reader.SkipBalanced('(');
        return record.BecomeInteger(1);
    }
    const bool isFunction = record.isLocation && record.symbol != 0 && record.size == SIZE_FUNCTION;
    if (!isFunction)
        return ReportError(ERR_SYNTAX);
    const ScriptWord function = m_Symbols[record.symbol].word;
    record.BecomePlain(CallFunction(function, record.floor));
}

void CVScript::EvalSubscript(ScriptValue& record) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (record.depth < 2 && record.size != SIZE_WORD)
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
    if (HasError())
        return;
    LoadValue(record);
    if (HasError())
        return;
    if (record.depth == 0)
        return ReportError(ERR_SYNTAX);
    --record.depth;
    const bool isCharacter = record.size == SIZE_CHARACTER && record.depth == 0;
    const auto element = static_cast<DWORD>(index - 1);
    record.word = ScriptWord::Integer(
        static_cast<std::int32_t>(record.word.Location() + (isCharacter ? 1 : 4) * element));
    record.isLocation = true;
    record.symbol = 0;
    record.elements = 0;
}
