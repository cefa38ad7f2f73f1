// How: a statement is run or, with m_nSkip raised, read in the same way without effect; a block
// that is closed is skipped in one step. A loop goes back to where its condition, or its body,
// stands in the stream.
#include "script/ScriptStatements.h"

#include "script/KeywordTable.h"
#include "script/ScriptDepth.h"

void CScriptStatements::SkipStatement(DWORD floor) {
    if (m_Reader.SkipBlock())
        return;
    ++m_nSkip;
    ExecuteStatement(floor);
    --m_nSkip;
}

// The block that follows a condition or a CASE, or the ELSEIF.
void CScriptStatements::ExecuteOrSkip(bool isTaken, DWORD floor) {
    if (isTaken)
        ExecuteStatement(floor);
    else
        SkipStatement(floor);
}

void CScriptStatements::ExecuteBlock(DWORD floor) {
    if (m_nSkip > 0)
        return m_Reader.SkipBalanced('{');
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    const Scope scope = BeginScope();
    const DWORD start = m_Reader.Position();
    m_Reader.Expect('{');
    const DWORD behind = HasError() ? 0 : m_Reader.BehindClosing();
    if (!DeclareLocals(scope.symbols, floor))
        return;
    while (!HasError() && m_Reader.Peek() != '}' && !m_bBreak && !m_bReturn)
        ExecuteStatement(floor);
    if (HasError())
        return;
    EndScope(scope, m_bReturn);
    m_Reader.Seek(behind != 0 ? behind : start);
    if (behind == 0)
        m_Reader.SkipBalanced('{');
}

bool CScriptStatements::DeclareLocals(DWORD definitionFloor, DWORD evaluationFloor) {
    for (BYTE code = m_Reader.Peek(); code == TOKEN_STRING || code == TOKEN_INTEGER;
         code = m_Reader.Peek()) {
        m_Reader.Take();
        if (!Declare(definitionFloor, evaluationFloor, code))
            return false;
    }
    return true;
}

void CScriptStatements::ExecuteSimple(DWORD floor) {
    if (!SpendStatement())
        return;
    const BYTE code = m_Reader.Peek();
    if (code == TOKEN_NAME || code == '(' || code == '@')
        return EvaluateStatement(code, floor);
    m_Reader.Take();
    ExecuteControl(code, floor);
}

void CScriptStatements::ExecuteControl(BYTE code, DWORD floor) {
    switch (code) {
    case TOKEN_GOTO:
        return;
    case TOKEN_IF:
    case TOKEN_ELSEIF:
        return ExecuteIf(floor);
    case TOKEN_FOR:
        return ExecuteFor(floor);
    case TOKEN_WHILE:
        return ExecuteWhile(floor);
    case TOKEN_SELECT:
        return ExecuteSelect(floor);
    case TOKEN_RETURN:
        return ExecuteReturn(floor);
    case TOKEN_EXITFOR:
    case TOKEN_EXITWHILE:
        m_bBreak = m_bBreak || m_nSkip == 0;
        return;
    default:
        return ReportError(ERR_OUT_OF_PLACE, TokenName(code));
    }
}

// A condition gives back what texts it made, so that a loop does not use up the heap with it.
bool CScriptStatements::Holds(DWORD floor) {
    const Scope scope = BeginScope();
    const bool holds = Evaluate(floor).value != 0;
    if (HasError())
        return false;
    EndScope(scope, false);
    return holds;
}

// An ELSEIF is an IF in the place of an ELSE, which owns the rest of the chain.
void CScriptStatements::ExecuteIf(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    const bool isSkipping = m_nSkip > 0;
    const bool holds = Holds(floor) && !isSkipping;
    if (!HasError())
        m_Reader.Expect(TOKEN_THEN);
    ExecuteOrSkip(holds, floor);
    if (!isSkipping && m_Reader.Accept(TOKEN_ENDIF))
        return;
    while (!HasError() && m_Reader.Accept(TOKEN_ELSEIF)) {
        m_Reader.StepBack();
        ExecuteOrSkip(!holds && !isSkipping, floor);
        if (!isSkipping)
            break;
    }
    if (!HasError() && m_Reader.Accept(TOKEN_ELSE))
        ExecuteOrSkip(!holds && !isSkipping, floor);
    if (!HasError() && !isSkipping)
        m_Reader.Accept(TOKEN_ENDIF);
}

void CScriptStatements::ExecuteFor(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (m_nSkip > 0)
        return SkipFor(floor);
    ScriptValue control(floor);
    EvalAssign(control);
    const std::int32_t start = ValueOf(control);
    if (!HasError())
        m_Reader.Expect(TOKEN_TO);
    const std::int32_t end = Evaluate(floor).value;
    std::int32_t step = 1;
    if (!HasError() && m_Reader.Accept(TOKEN_STEP))
        step = Evaluate(floor).value;
    if (HasError())
        return;
    const DWORD body = m_Reader.Position();
    CountThrough(control, {end, step, start <= end});
    if (HasError())
        return;
    m_Reader.Seek(body);
    EndFor(floor);
}

void CScriptStatements::SkipFor(DWORD floor) {
    Evaluate(floor);
    m_Reader.Expect(TOKEN_TO);
    Evaluate(floor);
    if (m_Reader.Accept(TOKEN_STEP))
        Evaluate(floor);
    SkipStatement(floor);
}

void CScriptStatements::EndFor(DWORD floor) {
    SkipStatement(floor);
    m_bBreak = false;
    if (!HasError())
        m_Reader.Expect(TOKEN_NEXT);
    if (!HasError() && !m_Reader.AcceptEol())
        Evaluate(floor);
}

// The bounds tell the direction, the step only how far.
void CScriptStatements::CountThrough(const ScriptValue& control, const Count& count) {
    const DWORD body = m_Reader.Position();
    const auto bits = static_cast<DWORD>(count.step);
    const DWORD distance = (count.step < 0) == count.isUp ? 0 - bits : bits;
    m_bReturn = false;
    m_bBreak = false;
    for (;;) {
        const std::int32_t value = ValueOf(control);
        if (HasError() || (count.isUp ? value > count.end : value < count.end))
            return;
        m_Reader.Seek(body);
        ExecuteStatement(control.floor);
        if (m_bBreak || m_bReturn || !SpendStatement())
            return;
        const auto next =
            static_cast<std::int32_t>(static_cast<DWORD>(ValueOf(control)) + distance);
        if (!HasError())
            StoreValue(control, ScriptWord::Integer(next), body);
    }
}

std::int32_t CScriptStatements::ValueOf(const ScriptValue& place) {
    if (place.isLocation && place.symbol != 0)
        return m_Symbols[place.symbol].word.value;
    ScriptValue value = place;
    if (!HasError())
        LoadValue(value);
    return value.word.value;
}

void CScriptStatements::ExecuteWhile(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (m_nSkip > 0) {
        Evaluate(floor);
        return SkipStatement(floor);
    }
    m_bReturn = false;
    m_bBreak = false;
    const DWORD condition = m_Reader.Position();
    while (Holds(floor) && SpendStatement()) {
        ExecuteStatement(floor);
        if (m_bBreak || m_bReturn || HasError())
            break;
        m_Reader.Seek(condition);
    }
    if (!HasError() && !m_bBreak && !m_bReturn)
        SkipStatement(floor);
    m_bBreak = false;
    if (!HasError())
        m_Reader.Expect(TOKEN_WEND);
}

void CScriptStatements::ExecuteSelect(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    ScriptValue selector(floor);
    EvalAssign(selector);
    // A variable is looked at again for each value; anything else has the value it has now.
    const bool isVariable = selector.isLocation && selector.symbol != 0;
    if (!HasError() && !isVariable)
        LoadValue(selector);
    m_Arguments.push_back(selector.word);
    if (!HasError())
        m_Reader.SkipBalanced('{');
    const DWORD outerSkip = m_nSkip;
    bool hasRun = false;
    while (!HasError() && ExecuteCase(selector, hasRun))
        // What ends the SELECT early ends it for the values of the cases behind, too.
        if (m_bBreak || m_bReturn)
            m_nSkip = outerSkip + 1;
    m_nSkip = outerSkip;
    m_Arguments.pop_back();
}

// False behind the last one.
bool CScriptStatements::ExecuteCase(const ScriptValue& selector, bool& hasRun) {
    m_Reader.Expect(TOKEN_CASE);
    if (HasError())
        return false;
    const bool isDefault = m_Reader.Accept(TOKEN_DEFAULT);
    const bool runs = isDefault ? !hasRun : MatchesCase(selector);
    if (HasError())
        return false;
    ExecuteOrSkip(runs && m_nSkip == 0, selector.floor);
    hasRun = hasRun || runs;
    if (HasError() || m_Reader.Accept(TOKEN_ENDSELECT))
        return false;
    if (isDefault)
        m_Reader.Expect(TOKEN_ENDSELECT);
    return true;
}

bool CScriptStatements::MatchesCase(const ScriptValue& selector) {
    bool matches = false;
    const std::size_t value = m_Arguments.size() - 1;
    do {
        const DWORD position = m_Reader.Position();
        const ScriptWord word = Evaluate(selector.floor);
        if (HasError())
            return false;
        if (m_nSkip > 0)
            continue;
        const ScriptWord& current =
            selector.isLocation ? m_Symbols[selector.symbol].word : m_Arguments[value];
        matches =
            (current.text ? Order(current, word, position) == 0 : current.value == word.value) ||
            matches;
    } while (!HasError() && m_Reader.Accept(','));
    return matches && !HasError();
}

void CScriptStatements::ExecuteReturn(DWORD floor) {
    if (m_Reader.AcceptEol())
        m_nResult = {};
    else
        m_nResult = Evaluate(floor);
    m_bReturn = m_bReturn || m_nSkip == 0;
}
