// CScriptDeclarations: carries out declarations: variables and arrays, their storage, their first
// values.
//
// A room of the engine (ScriptState.h), on that of the expressions.
#pragma once

#include "script/ScriptEvaluator.h"

class CScriptDeclarations : public CScriptEvaluator {
  protected:
    using CScriptEvaluator::CScriptEvaluator;
    ~CScriptDeclarations() = default;

    // The declarators behind STRING or INTEGER, the type code that was just read. The names belong
    // to the scope above the definition floor, dimensions and first values are evaluated at the
    // other one. FALSE after a report, and when the run is to end.
    // Out of line: blocks call themselves.
    [[gnu::noinline]] bool Declare(DWORD definitionFloor, DWORD evaluationFloor, BYTE type);

  private:
    bool DeclareOne(DWORD definitionFloor, DWORD evaluationFloor, BYTE type);
    DWORD DefineVariable(DWORD definitionFloor, BYTE type);
    bool DeclareText(DWORD symbol);
    bool DeclareArray(DWORD symbol, DWORD evaluationFloor);
    bool MakeArray(DWORD symbol, std::int32_t dimension);
    void InitializeArray(DWORD symbol, DWORD evaluationFloor);
    void InitializeScalar(DWORD symbol, DWORD evaluationFloor);
    void StoreElement(DWORD place, ScriptWord word);
};
