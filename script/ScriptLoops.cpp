// FOR and WHILE: a loop goes back to where its body, or its condition, stands in the stream.
#include "script/Script.h"

#include "script/ScriptDepth.h"

void CVScript::ExecuteFor(DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return;
    if (m_nSkip > 0) {
        Evaluate(floor);
        m_Reader.Expect(TOKEN_TO);
        Evaluate(floor);
        if (m_Reader.Accept(TOKEN_STEP))
            Evaluate(floor);
        return SkipStatement(floor);
    }
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
    CountThrough(control, {end, step, start <= end}, floor);
    if (HasError())
        return;
    m_Reader.Seek(body);
    SkipStatement(floor);
    m_bBreak = false;
    if (!HasError())
        m_Reader.Expect(TOKEN_NEXT);
    if (!HasError() && !m_Reader.AcceptEol())
        Evaluate(floor);
}

std::int32_t CVScript::ValueOf(ScriptValue place) {
    if (!HasError())
        LoadValue(place);
    return place.word.value;
}

// The bounds tell the direction, the step only how far.
void CVScript::CountThrough(const ScriptValue& control, const Count& count, DWORD floor) {
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
        ExecuteStatement(floor);
        if (m_bBreak || m_bReturn || !SpendStatement())
            return;
        const auto next =
            static_cast<std::int32_t>(static_cast<DWORD>(ValueOf(control)) + distance);
        if (!HasError())
            StoreValue(control, ScriptWord::Integer(next), body);
    }
}

void CVScript::ExecuteWhile(DWORD floor) {
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
