// CVScript: the script engine. Loads a script, runs its main function, and is done.
//
// The caller makes one for each run and owns it; Run blocks until the script has ended, and it is
// all used from that one thread. There is no way to stop a run from outside: it ends by itself, by
// its first error, when the device is gone, or when its statement budget is used up.
//
// The engine reaches the device through the given CVModem and the user through the platform's
// notification calls. All that a script can reach of this process is what CScriptMemory offers.
#pragma once

#include "platform/Types.h"
#include "script/BuiltinTable.h"
#include "script/NameTable.h"
#include "script/ResultBuffers.h"
#include "script/ScriptArea.h"
#include "script/ScriptMemory.h"
#include "script/ScriptReport.h"
#include "script/ScriptValue.h"
#include "script/SymbolTable.h"
#include "script/TokenReader.h"

#include <string>
#include <string_view>
#include <vector>

class CVModem;

// Posted to the owner window: wParam 1 and the error code in lParam when loading failed, both 0
// when the script is loaded and about to run.
inline constexpr UINT WM_SCRIPTLOAD = 0x8064;

class CVScript {
  public:
    // The owner, if there is one, is told how loading went and owns the message boxes.
    explicit CVScript(HWND owner = nullptr);
    CVScript(const CVScript&) = delete;
    CVScript& operator=(const CVScript&) = delete;
    ~CVScript();

    // Loads the file and runs its main function, once in the engine's life. 0 when main was run,
    // whether or not an error was reported meanwhile; ERR_OPEN, ERR_MEMORY or ERR_INVALID_FILE when
    // it could not be. The user has then been told why.
    DWORD Run(LPCSTR path, CVModem* modem);

    // Ends the run without a word after so many statements; 0, the default: never.
    void SetStatementBudget(DWORD statements) { m_dwBudget = statements; }

    // Whether loading stopped at a line feed without a carriage return before it: the file has the
    // line ends of another system.
    bool HasUnixLineEnds() const { return m_bUnixLineEnds; }

    // Whether the run was ended because the device is gone.
    bool IsDeviceGone() const { return m_bDeviceGone; }

    // --- For the built-in functions ---

    CVModem& Host() { return *m_pHost; }
    CResultBuffers& Results() { return m_Results; }

    // The text of an argument, valid until its memory is written to; empty after a report of a
    // location that leads nowhere.
    std::string_view ReadText(const ScriptWord& text);

    // Replaces the text at a location, cut at 255 characters (in a result buffer, too). FALSE after
    // a report: it stands where a script may not write.
    bool WriteText(const ScriptWord& target, std::string_view text);

    // As CScriptReport's.
    void ReportError(DWORD code, std::string_view detail = {},
                     std::int32_t line = CScriptReport::CURRENT_LINE) {
        m_Report.ReportError(code, detail, line);
    }
    bool HasError() const { return m_Report.HasError(); }

    // Ends the run, without a report, when the device is gone or the end of the program was asked
    // for; then TRUE.
    bool EndIfOver();

    // Whether SendString or SendFile has sent something since the last command.
    bool m_bHasSent = false;

    // Kept for the host; empty when the engine is made.
    std::string m_strApn;
    std::string m_strDialString;
    std::string m_strPassword;
    std::string m_strUserName;

  private:
    // What a block or call gives back at its end.
    struct Scope {
        DWORD symbols;
        DWORD heap;
        std::size_t kept;
    };
    // A text that outlives the scope it was made in, and who refers to it: a place, an argument
    // (ArgumentPlace) or RESULT_PLACE.
    struct KeptText {
        DWORD source;
        DWORD place;
        bool isOwned;
    };
    // How a FOR counts.
    struct Count {
        std::int32_t end;
        std::int32_t step;
        bool isUp;
    };

    // ScriptLoad.cpp
    DWORD RunOpened(HANDLE file);
    bool Load(HANDLE file);
    bool RegisterBuiltins();
    bool PreScan();
    bool PreScanFunction(bool& hasMain);
    void RunMain();
    void NotifyOwner(bool failed, DWORD code);

    // ScriptDeclare.cpp
    [[gnu::noinline]] bool Declare(DWORD definitionFloor, DWORD evaluationFloor, BYTE type);
    bool DeclareOne(DWORD definitionFloor, DWORD evaluationFloor, BYTE type);
    bool DeclareArray(DWORD symbol, DWORD evaluationFloor);
    bool DeclareText(DWORD symbol);
    void InitializeArray(DWORD symbol, DWORD evaluationFloor);
    void InitializeScalar(DWORD symbol, DWORD evaluationFloor);
    void StoreElement(DWORD place, ScriptWord word);

    // ScriptHeap.cpp
    DWORD Alloc(DWORD count);
    DWORD AllocTextBuffer();
    DWORD HomeFor(DWORD place);
    ScriptWord CopyText(DWORD home, ScriptWord text);
    ScriptWord CopyTextTo(DWORD place, ScriptWord text);
    bool GiveElementRoom(DWORD location);
    [[gnu::noinline]] ScriptWord Borrow(DWORD symbol, ScriptWord text);
    [[gnu::noinline]] void LeaveText(DWORD place);
    Scope BeginScope() {
        const Scope scope = {m_Symbols.Top(), m_Area.Heap(), m_Kept.size()};
        m_Scopes.push_back(scope);
        return scope;
    }
    // Gives back what was taken since; keeps the result register's text on demand.
    void EndScope(const Scope& scope, bool keepResult) {
        m_Scopes.pop_back();
        GiveBackHeap(scope, keepResult);
        m_Symbols.DropTo(scope.symbols);
    }
    void GiveBackHeap(const Scope& scope, bool keepResult) {
        if (m_Kept.size() > scope.kept || (keepResult && m_nResult.text))
            KeepTexts(scope, keepResult);
        else
            m_Area.SetHeap(scope.heap);
    }
    [[gnu::noinline]] void DropBorrowers(std::size_t first, DWORD lastSymbol);
    bool DiesBefore(DWORD place, ScriptWord text) const;
    [[gnu::noinline]] void KeepTexts(const Scope& scope, bool keepResult);
    void GatherKept(const Scope& scope, bool keepResult);
    bool IsGone(DWORD place, const Scope& scope) const;
    static constexpr DWORD ArgumentPlace(std::size_t index) {
        return ARGUMENT_BASE + static_cast<DWORD>(index);
    }
    ScriptWord LoadKept(DWORD place) const;
    void StoreKept(DWORD place, ScriptWord word, DWORD home);

    // ScriptEvaluate.cpp
    bool TakePlain(ScriptValue& record);
    bool AssignPlain(DWORD floor);
    bool EvalPlainPair(ScriptValue& left);
    ScriptWord Evaluate(DWORD floor);
    ScriptWord EvaluateRight(DWORD floor);
    ScriptWord EvaluateHere(DWORD floor);
    void EvalAssign(ScriptValue& record);
    [[gnu::noinline]] void EvalAssignment(ScriptValue& target);
    void Assign(const ScriptValue& target, ScriptWord word, DWORD position);
    void LoadValue(ScriptValue& record) {
        if (m_nSkip > 0)
            return LoadSkipped(record);
        if (!record.isLocation)
            return;
        record.isLocation = false;
        if (record.symbol != 0)
            record.word = m_Symbols[record.symbol].word;
        else
            LoadLocation(record);
    }
    static void LoadSkipped(ScriptValue& record);
    [[gnu::noinline]] void LoadLocation(ScriptValue& record);
    void StoreValue(const ScriptValue& record, ScriptWord word, DWORD position) {
        if (!record.isLocation || record.size == SIZE_FUNCTION)
            return ReportAt(ERR_SYNTAX, position);
        if (record.symbol != 0)
            m_Symbols[record.symbol].word = word;
        else
            StoreLocation(record, word, position);
    }
    [[gnu::noinline]] void StoreLocation(const ScriptValue& record, ScriptWord word,
                                         DWORD position);

    // ScriptOperators.cpp
    bool IsOperatorNext(BYTE level);
    void EvalOperand(ScriptValue& record, BYTE level);
    void EvalOperators(ScriptValue& left, BYTE level);
    void Apply(ScriptValue& left, BYTE operation, const ScriptValue& right, DWORD position);
    [[gnu::noinline]] void Subtract(ScriptValue& left, const ScriptValue& right, DWORD position);
    [[gnu::noinline]] void Concatenate(ScriptValue& left, DWORD position);
    [[gnu::noinline]] std::int32_t Divide(BYTE operation, std::int32_t left, std::int32_t right,
                                          DWORD position);
    [[gnu::noinline]] std::int32_t Order(const ScriptWord& left, const ScriptWord& right,
                                         DWORD position);

    // ScriptOperands.cpp
    void EvalUnary(ScriptValue& record);
    [[gnu::noinline]] void Dereference(ScriptValue& record);
    [[gnu::noinline]] void EvalPrefixed(ScriptValue& record, BYTE code);
    [[gnu::noinline]] void EvalPrimary(ScriptValue& record, BYTE code);
    void EvalParenthesized(ScriptValue& record);
    void EvalNumber(ScriptValue& record);
    void EvalLocationOf(ScriptValue& record);
    void EvalName(ScriptValue& record);
    [[gnu::noinline]] void EvalSubscript(ScriptValue& record);
    [[gnu::noinline]] void EvalCall(ScriptValue& record);

    // ScriptCalls.cpp
    ScriptWord CallFunction(ScriptWord function, DWORD floor);
    bool EvalArguments(DWORD floor);
    bool EvalArgument(DWORD floor);
    void CallBuiltin(DWORD row, std::size_t firstArgument, DWORD position);
    bool CheckArguments(const BuiltinEntry& entry, const BuiltinArguments& arguments,
                        DWORD position);
    void CallScript(DWORD definition, std::size_t firstArgument, DWORD position);
    bool BindParameters(DWORD floor, std::size_t firstArgument, DWORD position);
    bool BindParameter(DWORD floor, ScriptWord argument);
    void ReportParameter(BYTE code);

    // ScriptStatements.cpp
    void ExecuteStatement(DWORD floor);
    void SkipStatement(DWORD floor);
    void ExecuteBlock(DWORD floor);
    void ExecuteSimple(DWORD floor);
    [[gnu::noinline]] void ExecuteIf(DWORD floor);
    [[gnu::noinline]] void ExecuteFor(DWORD floor);
    [[gnu::noinline]] void ExecuteWhile(DWORD floor);
    bool Holds(DWORD floor);
    void ExecuteExpression(BYTE code, DWORD floor);
    [[gnu::noinline]] void ExecuteSelect(DWORD floor);
    bool MatchesCase(const ScriptValue& selector, DWORD floor);
    std::int32_t ValueOf(ScriptValue place);
    void CountThrough(const ScriptValue& control, const Count& count, DWORD floor);
    [[gnu::noinline]] void ReportAt(DWORD error, DWORD position);
    std::int32_t LineAt(DWORD position) const {
        return static_cast<std::int32_t>(m_Reader.LineAt(position));
    }
    [[gnu::noinline]] void ExecuteReturn(DWORD floor);
    bool SpendStatement();
    [[gnu::noinline]] void ServeHost();

    CScriptReport m_Report; // m_bError, m_bShowErrors
    CVModem* m_pHost = nullptr;
    HWND m_hWndOwner;
    CScriptArea m_Area; // m_pLimit, m_pHeap
    CNameTable m_Names;
    CSymbolTable m_Symbols;
    CResultBuffers m_Results;
    CScriptMemory m_Memory;
    CTokenReader m_Reader; // m_pPos, m_pStart, m_pEnd

    ScriptWord m_nResult; // of the latest RETURN or built-in call
    // No places, but what refers to a text like one: the result register, and the arguments above
    // every location.
    static constexpr DWORD RESULT_PLACE = 0;
    static constexpr DWORD ARGUMENT_BASE = 0x80000000;
    std::vector<ScriptWord> m_Arguments; // of calls, left operands, selectors in progress: a stack
    std::vector<Scope> m_Scopes;         // in progress, the innermost last
    std::vector<DWORD> m_Kept;           // places whose text a scope must keep when it ends
    std::vector<DWORD> m_Borrowers;      // variables that refer to a text that is not their own
    std::vector<KeptText> m_Moving;      // while a scope ends
    DWORD m_nSkip = 0;                   // above 0: statements and expressions have no effect
    bool m_bBreak = false;               // EXITFOR or EXITWHILE pending
    bool m_bReturn = false;              // RETURN pending
    bool m_bNoCopy = false;     // a dereference was seen: the next text assigned is not copied
    bool m_bTextStored = false; // what is no place refers to text that the statement made
    DWORD m_nDepth = 0;         // of nested calls, blocks and expressions
    DWORD m_nTurns = 0;         // statements since the start
    DWORD m_dwBudget = 0;
    DWORD m_dwLastServed = 0; // tick count
    bool m_bUnixLineEnds = false;
    bool m_bDeviceGone = false;
};
