// CScriptStatements: runs the statements of a script, and the blocks that they stand in.
//
// A room of the engine (ScriptState.h), on that of the declarations. A statement ends standing
// behind itself. EXITFOR, EXITWHILE and RETURN raise m_bBreak or m_bReturn, which every block and
// loop around looks at.
#pragma once

#include "script/ScriptDeclarations.h"

class CScriptStatements : public CScriptDeclarations {
  protected:
    using CScriptDeclarations::CScriptDeclarations;
    ~CScriptStatements() = default;

    // Runs the statement or block that follows.
    void ExecuteStatement(DWORD floor) {
        if (HasError())
            return;
        if (m_Reader.Peek() == '{')
            ExecuteBlock(floor);
        else
            ExecuteSimple(floor);
    }

    // Runs the block that follows in a scope of its own: declarations, then statements.
    void ExecuteBlock(DWORD floor);

  private:
    // How a FOR counts.
    struct Count {
        std::int32_t end;
        std::int32_t step;
        bool isUp;
    };

    void SkipStatement(DWORD floor);
    void ExecuteOrSkip(bool isTaken, DWORD floor);
    bool DeclareLocals(DWORD definitionFloor, DWORD evaluationFloor);
    void ExecuteSimple(DWORD floor);
    void ExecuteControl(BYTE code, DWORD floor);
    // Out of line, as the other statements: all of them call themselves through blocks.
    [[gnu::noinline]] void ExecuteIf(DWORD floor);
    bool Holds(DWORD floor);
    [[gnu::noinline]] void ExecuteFor(DWORD floor);
    void SkipFor(DWORD floor);
    void EndFor(DWORD floor);
    void CountThrough(const ScriptValue& control, const Count& count);
    std::int32_t ValueOf(const ScriptValue& place);
    [[gnu::noinline]] void ExecuteWhile(DWORD floor);
    [[gnu::noinline]] void ExecuteSelect(DWORD floor);
    bool ExecuteCase(const ScriptValue& selector, bool& hasRun);
    bool MatchesCase(const ScriptValue& selector);
    [[gnu::noinline]] void ExecuteReturn(DWORD floor);
};
