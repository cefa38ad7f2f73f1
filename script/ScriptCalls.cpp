// Calls of built-in and script functions.
#include "script/Script.h"

#include "script/KeywordTable.h"
#include "script/ScriptDepth.h"

ScriptWord CVScript::CallFunction(ScriptWord function, DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return {};
    const Scope scope = BeginScope();
    const bool isAround = m_bNoCopy;
    m_bNoCopy = false;
    const std::size_t firstArgument = m_Arguments.size();
    const std::size_t firstBorrower = m_Borrowers.size();
    m_Reader.Expect('(');
    const DWORD position = m_Reader.Position();
    if (HasError() || !EvalArguments(floor))
        return {};
    const DWORD after = m_Reader.Position();
    if (function.Location() < CScriptArea::START)
        CallBuiltin(function.Location(), firstArgument, position);
    else
        CallScript(function.Location(), firstArgument, position);
    if (HasError())
        return {};
    if (m_Borrowers.size() > firstBorrower)
        DropBorrowers(firstBorrower, scope.symbols);
    EndScope(scope, true);
    m_Reader.Seek(after);
    m_bNoCopy = isAround;
    return m_nResult;
}

bool CVScript::EvalArguments(DWORD floor) {
    if (m_Reader.Accept(')'))
        return true;
    do {
        if (!EvalArgument(floor))
            return false;
    } while (m_Reader.Accept(','));
    m_Reader.Expect(')');
    return !HasError();
}

// An argument with "@" in front passes the location of its operand, from now on.
bool CVScript::EvalArgument(DWORD floor) {
    if (m_Reader.Peek() == '@')
        m_Reader.RewriteReference();
    const ScriptWord word = Evaluate(floor);
    if (HasError())
        return false;
    m_Arguments.push_back(word);
    return true;
}

void CVScript::CallBuiltin(DWORD row, std::size_t firstArgument, DWORD position) {
    const BuiltinEntry& entry = g_Builtins[row];
    const BuiltinArguments arguments = {m_Arguments.data() + firstArgument,
                                        static_cast<DWORD>(m_Arguments.size() - firstArgument)};
    if (CheckArguments(entry, arguments, position))
        m_nResult = entry.handler(*this, arguments);
    m_Arguments.resize(firstArgument);
}

bool CVScript::CheckArguments(const BuiltinEntry& entry, const BuiltinArguments& arguments,
                              DWORD position) {
    const std::string_view kinds = entry.arguments;
    const std::size_t named = kinds.size();
    if (arguments.count < named) {
        ReportAt(ERR_ARG_COUNT, position);
        return false;
    }
    for (DWORD index = 0; index < named; ++index) {
        if (arguments[index].text == (kinds[index] == 't'))
            continue;
        ReportAt(ERR_SYNTAX, position);
        return false;
    }
    return true;
}

// The position is the call's, behind its "(".
void CVScript::CallScript(DWORD definition, std::size_t firstArgument, DWORD position) {
    const DWORD floor = m_Symbols.Top();
    m_Reader.Seek(definition);
    m_Reader.Expect('(');
    if (HasError() || !BindParameters(floor, firstArgument, position))
        return;
    m_Arguments.resize(firstArgument);
    ExecuteBlock(floor);
    m_Symbols.DropTo(floor);
    m_bReturn = false;
    m_bBreak = false;
}

bool CVScript::BindParameters(DWORD floor, std::size_t firstArgument, DWORD position) {
    std::size_t next = firstArgument;
    const std::size_t end = m_Arguments.size();
    bool isTooFew = false;
    if (!m_Reader.Accept(')')) {
        do {
            isTooFew = isTooFew || next == end;
            if (!BindParameter(floor, isTooFew ? ScriptWord{} : m_Arguments[next++]))
                return false;
        } while (m_Reader.Accept(','));
        m_Reader.Expect(')');
    }
    if (!HasError() && (isTooFew || next != end))
        ReportAt(ERR_ARG_COUNT, position);
    return !HasError();
}

bool CVScript::BindParameter(DWORD floor, ScriptWord argument) {
    const BYTE type = m_Reader.NextToken();
    const bool isText = type == TOKEN_STRING;
    if (!isText && type != TOKEN_INTEGER) {
        ReportParameter(type);
        return false;
    }
    BYTE depth = isText ? 1 : 0;
    while (m_Reader.Accept('@') && depth < MOST_REFERENCES)
        ++depth;
    m_Reader.Expect(TOKEN_NAME);
    if (HasError())
        return false;
    const BYTE size = isText ? SIZE_CHARACTER : SIZE_WORD;
    const DWORD symbol = m_Symbols.DefineSymbol(floor, m_Reader.Name(), argument, size, depth);
    if (symbol == 0)
        return false;
    if (argument.text)
        m_Borrowers.push_back(symbol);
    m_Reader.SkipText();
    return true;
}

void CVScript::ReportParameter(BYTE code) {
    while (code == '@')
        code = m_Reader.NextToken();
    const std::string name =
        code == TOKEN_NAME ? std::string(m_Names[m_Reader.Name()]) : TokenName(code);
    ReportError(ERR_PARAM, name);
}
