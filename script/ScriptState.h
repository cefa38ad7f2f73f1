// CScriptState: the state of one run, which the rooms of the engine share.
//
// The rooms stand on it one upon the other, each with what is its own:
//
//   CScriptScopes        what a scope gives back, and how long a text lives
//   CScriptPlaces        loading, storing and assigning values
//   CScriptEvaluator     expressions
//   CScriptDeclarations  variables and arrays
//   CScriptStatements    statements and blocks
//   CScriptCalls         calls, of the script's functions and of the built-in ones
//   CVScript             the door: loading, running, and what built-in functions may ask
//
// A room calls those that it stands on. Upward lead two calls only, both virtual: an expression
// calls a function, a call a built-in one.
//
// What few statements need stands out of line, gnu::noinline: inlined into the functions that call
// themselves it would enlarge the frame of every level and the code of the common case (measured:
// loops of sums and over arrays took up to a fifth longer).
//
// One for each run, part of the CVScript; used from the script's thread. After the first error
// every operation of every room returns at once with a neutral result.
#pragma once

#include "platform/Types.h"
#include "script/NameTable.h"
#include "script/ResultBuffers.h"
#include "script/ScriptArea.h"
#include "script/ScriptMemory.h"
#include "script/ScriptReport.h"
#include "script/ScriptValue.h"
#include "script/SymbolTable.h"
#include "script/TokenReader.h"

#include <string_view>
#include <vector>

class CVModem;

class CScriptState {
  public:
    CScriptState(const CScriptState&) = delete;
    CScriptState& operator=(const CScriptState&) = delete;

    // As CScriptReport's.
    void ReportError(DWORD code, std::string_view detail = {},
                     std::int32_t line = CScriptReport::kCurrentLine) {
        m_Report.ReportError(code, detail, line);
    }
    bool HasError() const { return m_Report.HasError(); }

    // The text of a word, valid until its memory is written to; empty after a report of a location
    // that leads nowhere.
    std::string_view ReadText(const ScriptWord& text);

    // Ends the run, without a report, when the device is gone or the end of the program was asked
    // for; then TRUE.
    bool EndIfOver();

  protected:
    explicit CScriptState(HWND owner);
    ~CScriptState() = default;

    // The state of a run on the device begins.
    void BeginRun(CVModem* modem);

    // Reports by the line of a position in the stream. Out of line: rare.
    [[gnu::noinline]] void ReportAt(DWORD error, DWORD position);

    // Counts a turn of work, and now and then serves the device and the console; false when the run
    // is to end.
    bool SpendStatement();

    CScriptReport m_Report; // m_bError, m_bShowErrors
    CVModem* m_pHost = nullptr;
    CScriptArea m_Area; // m_pLimit, m_pHeap
    CNameTable m_Names;
    CSymbolTable m_Symbols; // m_pSymTop
    CResultBuffers m_Results;
    CScriptMemory m_Memory;
    CTokenReader m_Reader; // m_pPos, m_pStart, m_pEnd

    ScriptWord m_nResult;                // of the latest RETURN or built-in call
    std::vector<ScriptWord> m_Arguments; // of calls, left operands, selectors in progress: a stack
    DWORD m_nSkip = 0;                   // above 0: statements and expressions have no effect
    bool m_bBreak = false;               // EXITFOR or EXITWHILE pending
    bool m_bReturn = false;              // RETURN pending
    DWORD m_nDepth = 0;                  // of nested calls, blocks and expressions
    DWORD m_dwBudget = 0;                // of statements; 0: any number
    bool m_bDeviceGone = false;

  private:
    // Out of line: runs once in many statements.
    [[gnu::noinline]] void ServeHost();

    DWORD m_nTurns = 0;       // statements since the start
    DWORD m_dwLastServed = 0; // tick count
};
