// How: the arguments of all calls in progress are one stack, so that a text that one of them refers
// to is found when it must be kept. A script's function is run where it stands, the reader comes
// back behind the call.
#include "script/ScriptCalls.h"

#include "script/KeywordTable.h"
#include "script/ScriptDepth.h"

#include <utility>

void CScriptCalls::EvalCall(ScriptValue& record) {
    if (m_nSkip > 0) {
        m_Reader.SkipBalanced('(');
        return record.BecomeInteger(1);
    }
    const bool isFunction = record.isLocation && record.symbol != 0 && record.size == kSizeFunction;
    if (!isFunction)
        return ReportError(ERR_SYNTAX);
    const ScriptWord function = m_Symbols[record.symbol].word;
    record.BecomePlain(CallFunction(function, record.floor));
}

ScriptWord CScriptCalls::CallFunction(ScriptWord function, DWORD floor) {
    const CScriptDepth depth(m_nDepth, m_Report);
    if (!depth)
        return {};
    const Scope scope = BeginScope();
    const bool isAround = std::exchange(m_bNoCopy, false);
    const std::size_t firstArgument = m_Arguments.size();
    const std::size_t firstBorrower = CountBorrowers();
    m_Reader.Expect('(');
    const DWORD position = m_Reader.Position();
    if (HasError() || !EvalArguments(floor))
        return {};
    const DWORD after = m_Reader.Position();
    if (function.Location() < CScriptArea::kStart)
        CallBuiltin(function.Location(), firstArgument, position);
    else
        CallScript(function.Location(), firstArgument, position);
    if (HasError())
        return {};
    EndCall(scope, firstBorrower);
    m_Reader.Seek(after);
    m_bNoCopy = isAround;
    return m_nResult;
}

bool CScriptCalls::EvalArguments(DWORD floor) {
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
bool CScriptCalls::EvalArgument(DWORD floor) {
    if (m_Reader.Peek() == '@')
        m_Reader.RewriteReference();
    const ScriptWord word = Evaluate(floor);
    if (HasError())
        return false;
    m_Arguments.push_back(word);
    return true;
}

void CScriptCalls::CallBuiltin(DWORD row, std::size_t firstArgument, DWORD position) {
    const BuiltinEntry& entry = g_Builtins[row];
    const BuiltinArguments arguments = {m_Arguments.data() + firstArgument,
                                        static_cast<DWORD>(m_Arguments.size() - firstArgument)};
    if (CheckArguments(entry, arguments, position))
        m_nResult = RunHandler(entry.handler, arguments);
    m_Arguments.resize(firstArgument);
}

bool CScriptCalls::CheckArguments(const BuiltinEntry& entry, const BuiltinArguments& arguments,
                                  DWORD position) {
    const std::string_view kinds = entry.arguments;
    if (arguments.count < kinds.size())
        ReportAt(ERR_ARG_COUNT, position);
    for (DWORD index = 0; !HasError() && index < kinds.size(); ++index)
        if (arguments[index].text != (kinds[index] == 't'))
            ReportAt(ERR_SYNTAX, position);
    return !HasError();
}

void CScriptCalls::CallScript(DWORD definition, std::size_t firstArgument, DWORD position) {
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

bool CScriptCalls::BindParameters(DWORD floor, std::size_t firstArgument, DWORD position) {
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

bool CScriptCalls::BindParameter(DWORD floor, ScriptWord argument) {
    const BYTE type = m_Reader.NextToken();
    const bool isText = type == TOKEN_STRING;
    if (!isText && type != TOKEN_INTEGER) {
        ReportParameter(type);
        return false;
    }
    BYTE depth = isText ? 1 : 0;
    while (m_Reader.Accept('@') && depth < kMostReferences)
        ++depth;
    m_Reader.Expect(TOKEN_NAME);
    if (HasError())
        return false;
    const BYTE size = isText ? kSizeCharacter : kSizeWord;
    const DWORD symbol = m_Symbols.DefineSymbol(floor, m_Reader.Name(), argument, size, depth);
    if (symbol != 0 && argument.text)
        AddBorrower(symbol);
    m_Reader.SkipText();
    return symbol != 0;
}

void CScriptCalls::ReportParameter(BYTE code) {
    while (code == '@')
        code = m_Reader.NextToken();
    const std::string name =
        code == TOKEN_NAME ? std::string(m_Names[m_Reader.Name()]) : TokenName(code);
    ReportError(ERR_PARAM, name);
}
