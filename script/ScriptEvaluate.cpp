// Expressions: their value, assignment, loading and storing.
#include "script/Script.h"

#include "script/OperatorLevels.h"
#include "script/ScriptDepth.h"

// Most operands are a literal or a variable by itself: its value is taken at once. False, and
// nothing is consumed, where a call, a subscript or an assignment follows, and for all else.
bool CVScript::TakePlain(ScriptValue& record) {
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
        if (entry.size == SIZE_FUNCTION || entry.elements > 0)
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

// Most expressions are two plain integers with an operator between them. False, and nothing is
// consumed, for all else.
[[gnu::always_inline]] inline bool CVScript::EvalPlainPair(ScriptValue& left) {
    if (left.word.text)
        return false;
    const BYTE operation = m_Reader.Peek();
    const DWORD start = m_Reader.Position();
    m_Reader.Take();
    ScriptValue right(left.floor);
    if (!TakePlain(right) || right.word.text || IsOperatorNext(LOOSEST_LEVEL)) {
        m_Reader.Seek(start);
        return false;
    }
    Apply(left, operation, right, start + 1);
    return true;
}

// Inlined into both of those that follow: here the time of most scripts goes.
[[gnu::always_inline]] inline ScriptWord CVScript::EvaluateHere(DWORD floor) {
    if (HasError())
        return {};
    ScriptValue record(floor);
    if (!TakePlain(record)) {
        EvalAssign(record);
        if (!HasError())
            LoadValue(record);
    } else if (IsOperatorNext(LOOSEST_LEVEL) && !EvalPlainPair(record)) {
        EvalOperators(record, LOOSEST_LEVEL);
        if (!HasError() && m_Reader.Peek() == '=')
            EvalAssignment(record);
    }
    return HasError() ? ScriptWord{} : record.word;
}

// What a dereference in an expression means for an assignment ends with the expression.
ScriptWord CVScript::Evaluate(DWORD floor) {
    const bool isAround = m_bNoCopy;
    m_bNoCopy = false;
    const ScriptWord word = EvaluateHere(floor);
    m_bNoCopy = isAround;
    return word;
}

// The right side of an assignment, which is part of the expression.
ScriptWord CVScript::EvaluateRight(DWORD floor) {
    return EvaluateHere(floor);
}

// A statement that does no more than assign to a plain variable. False, and nothing is consumed,
// for any other.
bool CVScript::AssignPlain(DWORD floor) {
    const auto [payload, behind] = m_Reader.PeekText();
    const DWORD position = m_Reader.PositionOfCode(behind);
    if (m_Reader.CodeAt(position) != '=' || m_nSkip > 0)
        return false;
    ScriptValue target(floor);
    target.symbol = m_Symbols.FindVisible(static_cast<DWORD>(payload), floor);
    if (m_Symbols[target.symbol].size == SIZE_FUNCTION || m_Symbols[target.symbol].elements > 0)
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
void CVScript::EvalAssign(ScriptValue& record) {
    EvalUnary(record);
    if (!HasError() && IsOperatorNext(LOOSEST_LEVEL))
        EvalOperators(record, LOOSEST_LEVEL);
    if (!HasError() && m_Reader.Peek() == '=')
        EvalAssignment(record);
}

void CVScript::EvalAssignment(ScriptValue& target) {
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

// Text is copied, so that no two variables share one. After a dereference the reference itself is
// stored, unless it would be dead before the variable is.
void CVScript::Assign(const ScriptValue& target, ScriptWord word, DWORD position) {
    const bool copies = !m_bNoCopy;
    m_bNoCopy = false;
    if (!target.isLocation || (target.size == SIZE_CHARACTER && target.depth == 0))
        return StoreValue(target, word, position);
    const DWORD place =
        target.symbol != 0 ? CScriptMemory::SymbolLocation(target.symbol) : target.word.Location();
    const DWORD home = target.symbol != 0 ? m_Symbols[target.symbol].home : 0;
    // A number in a variable leaves its text where it is.
    if ((word.text || target.symbol == 0) && (!m_Borrowers.empty() || !m_Arguments.empty()))
        LeaveText(place);
    if (word.text && (copies || DiesBefore(place, word)))
        word = home != 0 ? CopyText(home, word) : CopyTextTo(place, word);
    else if (word.text)
        word = Borrow(target.symbol, word);
    if (!HasError())
        StoreValue(target, word, position);
}

// What is skipped has a value without being looked at.
void CVScript::LoadSkipped(ScriptValue& record) {
    record.word = ScriptWord::Integer(1);
    record.isLocation = false;
}

void CVScript::LoadLocation(ScriptValue& record) {
    const DWORD location = record.word.Location();
    if (record.size == SIZE_CHARACTER && record.depth == 0) {
        std::int32_t character = 0;
        if (!m_Memory.LoadCharacter(location, character))
            ReportError(ERR_POINTER);
        record.word = ScriptWord::Integer(character);
    } else if (!m_Memory.LoadWord(location, record.word)) {
        ReportError(ERR_POINTER);
    } else if (record.word.text) {
        record.word = m_Memory.ToElementText(location, record.word);
    }
}

void CVScript::StoreLocation(const ScriptValue& record, ScriptWord word, DWORD position) {
    const DWORD location = record.word.Location();
    const bool isCharacter = record.size == SIZE_CHARACTER && record.depth == 0;
    if (isCharacter && !GiveElementRoom(location))
        return;
    const bool isStored = isCharacter
                              ? m_Memory.StoreCharacter(location, static_cast<BYTE>(word.value))
                              : m_Memory.StoreWord(location, word);
    if (!isStored)
        ReportAt(ERR_POINTER, position);
}

void CVScript::ReportAt(DWORD error, DWORD position) {
    ReportError(error, {}, LineAt(position));
}
