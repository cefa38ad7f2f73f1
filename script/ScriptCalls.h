// CScriptCalls: calls functions, those of the script and the built-in ones.
//
// A room of the engine (ScriptState.h), on that of the statements. Arguments are evaluated in the
// caller's scope, from left to right; a text is passed as it stands, without a copy.
#pragma once

#include "script/BuiltinTable.h"
#include "script/ScriptStatements.h"

class CScriptCalls : public CScriptStatements {
  protected:
    using CScriptStatements::CScriptStatements;
    ~CScriptCalls() = default;

    void EvalCall(ScriptValue& record) final;

    // Calls the script's function whose parameters stand at a position, with the arguments from the
    // given one on, which are consumed. What is wrong with their number is reported by the position
    // of the call, behind its "(".
    void CallScript(DWORD definition, std::size_t firstArgument, DWORD position);

    // Calls a handler with the door that it needs.
    virtual ScriptWord RunHandler(BuiltinHandler handler, const BuiltinArguments& arguments) = 0;

  private:
    ScriptWord CallFunction(ScriptWord function, DWORD floor);
    bool EvalArguments(DWORD floor);
    bool EvalArgument(DWORD floor);
    void CallBuiltin(DWORD row, std::size_t firstArgument, DWORD position);
    bool CheckArguments(const BuiltinEntry& entry, const BuiltinArguments& arguments,
                        DWORD position);
    bool BindParameters(DWORD floor, std::size_t firstArgument, DWORD position);
    bool BindParameter(DWORD floor, ScriptWord argument);
    void ReportParameter(BYTE code);
};
