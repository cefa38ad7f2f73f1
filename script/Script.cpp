// How a script is loaded: tokenized through the front of the region, then read once by the reader
// (names, brackets), then at its top level only: built-in functions, globals with their first
// values and functions become symbols, in this order. What is in the functions is read when they
// are called.
#include "script/Script.h"

#include "common/UniqueHandle.h"
#include "platform/File.h"
#include "platform/Message.h"
#include "script/Tokenizer.h"

namespace {

constexpr std::string_view kMain = "main";

// The reader's own end mark stands behind the stream; the heap begins at an even position.
constexpr DWORD kBehindStream = 2;

} // namespace

CVScript::CVScript(HWND owner) : CScriptCalls(owner), m_hWndOwner(owner) {}

CVScript::~CVScript() = default;

DWORD CVScript::Run(LPCSTR path, CVModem* modem) {
    BeginRun(modem);
    CUniqueHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file == INVALID_HANDLE_VALUE)
        return Refuse(ERR_OPEN, path);
    if (!m_Area.Reserve() || !m_Symbols.Reserve())
        return Refuse(ERR_MEMORY);
    const bool isLoaded = Load(file);
    file.Reset();
    NotifyOwner(!isLoaded, isLoaded ? 0 : ERR_INVALID_FILE);
    if (!isLoaded)
        return ERR_INVALID_FILE;
    RunMain();
    return 0;
}

DWORD CVScript::Refuse(DWORD code, std::string_view detail) {
    NotifyOwner(true, code);
    ReportError(code, detail, CScriptReport::kNoLine);
    return code;
}

void CVScript::NotifyOwner(bool failed, DWORD code) {
    if (m_hWndOwner != nullptr)
        PostMessageA(m_hWndOwner, WM_SCRIPTLOAD, failed ? 1 : 0, static_cast<LPARAM>(code));
}

bool CVScript::WriteText(const ScriptWord& target, std::string_view text) {
    if (!GiveElementRoom(target.Location()))
        return false;
    if (m_Memory.WriteText(target.Location(), text))
        return true;
    ReportError(ERR_POINTER);
    return false;
}

ScriptWord CVScript::RunHandler(BuiltinHandler handler, const BuiltinArguments& arguments) {
    return handler(*this, arguments);
}

bool CVScript::Load(HANDLE file) {
    if (!Tokenize(file))
        return false;
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

bool CVScript::Tokenize(HANDLE file) {
    CTokenizer tokenizer(file, m_Area, m_Report);
    const bool isTokenized = tokenizer.Tokenize();
    m_bUnixLineEnds = tokenizer.HasUnixLineEnds();
    if (isTokenized)
        m_Reader.Prepare(m_Area.Bytes(), CScriptArea::kStart, tokenizer.End());
    return isTokenized;
}

// The value of a built-in's symbol is its row; that of a script's function lies in the stream,
// which begins far above.
bool CVScript::RegisterBuiltins() {
    static_assert(kBuiltinCount < CScriptArea::kStart);
    std::int32_t row = 0;
    for (; g_Builtins[static_cast<std::size_t>(row)].handler != nullptr; ++row) {
        const DWORD name = m_Names.Find(g_Builtins[static_cast<std::size_t>(row)].name);
        if (m_Symbols.DefineSymbol(CSymbolTable::kGlobalFloor, name, ScriptWord::Integer(row),
                                   kSizeFunction, 0) == 0)
            return false;
    }
    return true;
}

bool CVScript::PreScan() {
    constexpr DWORD kGlobal = CSymbolTable::kGlobalFloor;
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
            ReportError(ERR_EOF, {}, CScriptReport::kNoLine);
            return false;
        }
    }
    if (!hasMain)
        ReportError(ERR_NO_MAIN, {}, CScriptReport::kNoLine);
    return hasMain;
}

bool CVScript::PreScanFunction(bool& hasMain) {
    const DWORD name = m_Reader.Name();
    hasMain = hasMain || m_Names[name] == kMain;
    m_Reader.SkipText();
    const auto definition = static_cast<std::int32_t>(m_Reader.Position());
    if (m_Symbols.DefineSymbol(CSymbolTable::kGlobalFloor, name, ScriptWord::Integer(definition),
                               kSizeFunction, 0) == 0)
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
    const DWORD main = m_Symbols.LookupName(m_Names.Find(kMain), CSymbolTable::kGlobalFloor);
    if (main != 0)
        CallScript(m_Symbols[main].word.Location(), 0, m_Reader.End());
}
