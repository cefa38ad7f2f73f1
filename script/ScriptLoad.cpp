// Loading a script: its token stream, the built-ins, and one pass over its top level.
#include "script/Script.h"

#include "script/Tokenizer.h"

namespace {

constexpr std::string_view kMain = "main";

// The reader's own end mark stands behind the stream; the heap begins at an even position.
constexpr DWORD kBehindStream = 2;

} // namespace

bool CVScript::Load(HANDLE file) {
    {
        CTokenizer tokenizer(file, m_Area, m_Report);
        const bool isTokenized = tokenizer.Tokenize();
        m_bUnixLineEnds = tokenizer.HasUnixLineEnds();
        if (!isTokenized)
            return false;
        m_Reader.Prepare(m_Area.Bytes(), CScriptArea::START, tokenizer.End());
    }
    m_Report.SetLineSource(&m_Reader);
    const DWORD heap = m_Reader.End() + kBehindStream;
    m_Area.SetHeap(heap);
    m_Memory.SetStreamEnd(heap);
    m_Area.Bytes()[heap - 1] = 0; // the text of no characters
    for (const BuiltinEntry& entry : g_Builtins)
        if (entry.handler != nullptr)
            m_Names.Intern(entry.name);
    m_Symbols.UseNames();
    return RegisterBuiltins() && PreScan();
}

// The value of a built-in's symbol is its row; that of a script's function lies in the stream,
// which begins far above.
bool CVScript::RegisterBuiltins() {
    static_assert(BUILTIN_COUNT < CScriptArea::START);
    std::int32_t row = 0;
    for (; g_Builtins[static_cast<std::size_t>(row)].handler != nullptr; ++row) {
        const DWORD name = m_Names.Find(g_Builtins[static_cast<std::size_t>(row)].name);
        if (m_Symbols.DefineSymbol(CSymbolTable::GLOBAL_FLOOR, name, ScriptWord::Integer(row),
                                   SIZE_FUNCTION, 0) == 0)
            return false;
    }
    return true;
}

bool CVScript::PreScan() {
    constexpr DWORD kGlobal = CSymbolTable::GLOBAL_FLOOR;
    bool hasMain = false;
    for (;;) {
        const BYTE code = m_Reader.NextToken();
        if (code == TOKEN_EOF)
            break;
        if (code == TOKEN_STRING || code == TOKEN_INTEGER) {
            if (!Declare(kGlobal, kGlobal, code))
                return false;
        } else if (code == TOKEN_FUNCTION) {
            if (m_Reader.Accept(TOKEN_NAME) && !PreScanFunction(hasMain))
                return false;
        } else {
            ReportError(ERR_EOF, {}, CScriptReport::NO_LINE);
            return false;
        }
    }
    if (!hasMain)
        ReportError(ERR_NO_MAIN, {}, CScriptReport::NO_LINE);
    return hasMain;
}

bool CVScript::PreScanFunction(bool& hasMain) {
    const DWORD name = m_Reader.Name();
    hasMain = hasMain || m_Names[name] == kMain;
    m_Reader.SkipText();
    const auto definition = static_cast<std::int32_t>(m_Reader.Position());
    if (m_Symbols.DefineSymbol(CSymbolTable::GLOBAL_FLOOR, name, ScriptWord::Integer(definition),
                               SIZE_FUNCTION, 0) == 0)
        return false;
    m_Reader.SkipBalanced('(');
    if (!HasError())
        m_Reader.SkipBalanced('{');
    if (!HasError())
        m_Reader.Expect(TOKEN_ENDFUNCTION);
    return !HasError();
}

void CVScript::RunMain() {
    m_nSkip = 0;
    m_bReturn = false;
    m_bBreak = false;
    // The call itself stands nowhere in the script.
    m_Reader.Seek(m_Reader.End());
    const DWORD main = m_Symbols.LookupName(m_Names.Find(kMain), CSymbolTable::GLOBAL_FLOOR);
    if (main != 0)
        CallScript(m_Symbols[main].word.Location(), 0, m_Reader.End());
}
