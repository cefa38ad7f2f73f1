// Statements that are no loops, and the blocks they stand in.
#include "script/Script.h"

#include "script/KeywordTable.h"
#include "script/ScriptDepth.h"

void CVScript::ExecuteStatement(DWORD floor) {
    if (HasError())
        return;
    if (m_Reader.Peek() == '{')
        ExecuteBlock(floor);
    else
        ExecuteSimple(floor);
}

void CVScript::SkipStatement(DWORD floor) {
    if (m_Reader.SkipBlock())
        return;
    ++m_nSkip;
    ExecuteStatement(floor);
    --m_nSkip;
}

void CVScript::ExecuteBlock(DWORD floor) {
    if (m_nSkip > 0)
        return m_Reader.SkipBalanced('{');
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    const Scope scope = BeginScope();
    const DWORD start = m_Reader.Position();
    m_Reader.Expect('{');
    const DWORD behind = HasError() ? 0 : m_Reader.BehindClosing();
    for (BYTE code = m_Reader.Peek(); code == TOKEN_STRING || code == TOKEN_INTEGER;
         code = m_Reader.Peek()) {
        m_Reader.Take();
        if (!Declare(scope.symbols, floor, code))
            return;
    }
    while (!HasError() && m_Reader.Peek() != '}' && !m_bBreak && !m_bReturn)
        ExecuteStatement(floor);
    if (HasError())
        return;
    EndScope(scope, m_bReturn);
    m_Reader.Seek(behind != 0 ? behind : start);
    if (behind == 0)
        m_Reader.SkipBalanced('{');
}

void CVScript::ExecuteSimple(DWORD floor) {
    if (!SpendStatement())
        return;
    const BYTE code = m_Reader.Peek();
    if (code == TOKEN_NAME || code == '(' || code == '@')
        return ExecuteExpression(code, floor);
    m_Reader.Take();
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

// What texts the statement made on its way is given back at once, unless somebody refers to one.
void CVScript::ExecuteExpression(BYTE code, DWORD floor) {
    const DWORD heap = m_Area.Heap();
    const std::size_t kept = m_Kept.size();
    const bool wasStored = m_bTextStored;
    m_bTextStored = false;
    m_bNoCopy = false;
    if (code != TOKEN_NAME || !AssignPlain(floor))
        Evaluate(floor);
    // What is kept is in the heap, too.
    if (!m_bTextStored && m_Area.Heap() != heap)
        GiveBackHeap({m_Symbols.Top(), heap, kept}, false);
    m_bTextStored = m_bTextStored || wasStored;
}

// A condition gives back what texts it made, so that a loop does not use up the heap with it.
bool CVScript::Holds(DWORD floor) {
    const Scope scope = BeginScope();
    const bool holds = Evaluate(floor).value != 0;
    if (HasError())
        return false;
    EndScope(scope, false);
    return holds;
}

// An ELSEIF is an IF in the place of an ELSE, which owns the rest of the chain.
void CVScript::ExecuteIf(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    const bool isSkipping = m_nSkip > 0;
    const bool holds = Holds(floor) && !isSkipping;
    if (!HasError())
        m_Reader.Expect(TOKEN_THEN);
    const auto take = [&](bool isTaken) { // the block or ELSEIF that follows
        if (isTaken)
            ExecuteStatement(floor);
        else
            SkipStatement(floor);
    };
    take(holds);
    if (!isSkipping && m_Reader.Accept(TOKEN_ENDIF))
        return;
    while (!HasError() && m_Reader.Accept(TOKEN_ELSEIF)) {
        m_Reader.StepBack();
        take(!holds && !isSkipping);
        if (!isSkipping)
            break;
    }
    if (!HasError() && m_Reader.Accept(TOKEN_ELSE))
        take(!holds && !isSkipping);
    if (!HasError() && !isSkipping)
        m_Reader.Accept(TOKEN_ENDIF);
}

void CVScript::ExecuteReturn(DWORD floor) {
    if (m_Reader.AcceptEol())
        m_nResult = {};
    else
        m_nResult = Evaluate(floor);
    m_bReturn = m_bReturn || m_nSkip == 0;
}

void CVScript::ExecuteSelect(DWORD floor) {
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
    bool hasRun = false;
    const DWORD outerSkip = m_nSkip;
    while (!HasError()) {
        m_Reader.Expect(TOKEN_CASE);
        if (HasError())
            break;
        const bool isDefault = m_Reader.Accept(TOKEN_DEFAULT);
        const bool runs = isDefault ? !hasRun : MatchesCase(selector, floor);
        if (HasError())
            break;
        if (runs && m_nSkip == 0)
            ExecuteStatement(floor);
        else
            SkipStatement(floor);
        hasRun = hasRun || runs;
        // What ends the SELECT early ends it for the values of the cases behind, too.
        if (m_bBreak || m_bReturn)
            m_nSkip = outerSkip + 1;
        if (HasError() || m_Reader.Accept(TOKEN_ENDSELECT))
            break;
        if (isDefault)
            m_Reader.Expect(TOKEN_ENDSELECT);
    }
    m_nSkip = outerSkip;
    m_Arguments.pop_back();
}

bool CVScript::MatchesCase(const ScriptValue& selector, DWORD floor) {
    bool matches = false;
    const std::size_t value = m_Arguments.size() - 1;
    do {
        const DWORD position = m_Reader.Position();
        const ScriptWord word = Evaluate(floor);
        if (HasError())
            return false;
        if (m_nSkip > 0)
            continue;
        const bool isVariable = selector.isLocation;
        const ScriptWord& current =
            isVariable ? m_Symbols[selector.symbol].word : m_Arguments[value];
        matches =
            (current.text ? Order(current, word, position) == 0 : current.value == word.value) ||
            matches;
    } while (!HasError() && m_Reader.Accept(','));
    return matches && !HasError();
}
