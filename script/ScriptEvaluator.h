// CScriptEvaluator: evaluates the expressions of a script, straight from the token stream.
//
// A room of the engine (ScriptState.h), on that of the places. While skipping (m_nSkip above 0) an
// expression is read in the same way and names are looked up, but nothing is loaded, stored or
// called. What is wrong is reported; the result is then neutral.
//
// Names are those of the scope above the given floor, then the global ones.
#pragma once

#include "script/ScriptPlaces.h"

class CScriptEvaluator : public CScriptPlaces {
  protected:
    using CScriptPlaces::CScriptPlaces;
    ~CScriptEvaluator() = default;

    // The value of the expression at the reader's position.
    ScriptWord Evaluate(DWORD floor);

    // The same for a statement that is an expression; what texts it made on its
    // way are given back. The code is the first one, not consumed.
    void EvaluateStatement(BYTE code, DWORD floor) {
        const Statement statement = BeginStatement();
        m_bNoCopy = false;
        if (code != TOKEN_NAME || !AssignPlain(floor))
            Evaluate(floor);
        EndStatement(statement);
    }

    // The same for one whose place is needed: FOR's variable and SELECT's.
    void EvalAssign(ScriptValue& record);

    // -1, 0 or 1 as the left text sorts before, equal to or after the right one. No text on the
    // right is reported by the position. Out of line: texts are compared by few.
    [[gnu::noinline]] std::int32_t Order(const ScriptWord& left, const ScriptWord& right,
                                         DWORD position);

    // The call of what a record is, standing at the "(" of its arguments; the record becomes the
    // result.
    virtual void EvalCall(ScriptValue& record) = 0;

  private:
    // Out of line is what no plain value, variable or number needs.
    bool TakePlain(ScriptValue& record);
    bool AssignPlain(DWORD floor);
    bool EvalPlainPair(ScriptValue& left);
    ScriptWord EvaluateRight(DWORD floor);
    [[gnu::noinline]] void EvalAssignment(ScriptValue& target);

    bool IsOperatorNext(BYTE level);
    void EvalOperators(ScriptValue& left, BYTE level);
    void EvalOperator(ScriptValue& left, BYTE operation, DWORD position);
    void EvalOperand(ScriptValue& record, BYTE level);
    void Apply(ScriptValue& left, BYTE operation, const ScriptValue& right, DWORD position);
    [[gnu::noinline]] void Concatenate(ScriptValue& left, DWORD position);

    void EvalUnary(ScriptValue& record);
    [[gnu::noinline]] void EvalPrefixed(ScriptValue& record, BYTE code);
    [[gnu::noinline]] void Dereference(ScriptValue& record);
    void EvalLocationOf(ScriptValue& record);
    [[gnu::noinline]] void EvalPrimary(ScriptValue& record, BYTE code);
    void EvalParenthesized(ScriptValue& record);
    void EvalNumber(ScriptValue& record);
    void EvalName(ScriptValue& record);
    [[gnu::noinline]] void EvalSubscript(ScriptValue& record);
    static void BecomeElement(ScriptValue& record, DWORD index);
};
