#include "script/ScriptCheck.h"

#include "script/ScriptError.h"

CScriptCheck::CScriptCheck(std::string_view source)
    : m_tokens(source, m_findings), m_cursor(m_tokens.Get()),
      m_statements(m_cursor, m_scope, m_findings) {
    if (!m_tokens.Read())
        return;
    // Globals are made in the order of the file and know the functions before them; all of both are
    // there when a function runs.
    ReadTopLevel();
    CheckMain();
    for (const std::size_t function : m_functions) {
        m_cursor.Seek(function);
        m_statements.CheckFunction();
    }
}

void CScriptCheck::ReadTopLevel() {
    for (;;) {
        const SourceToken& token = m_cursor.Take();
        if (token.code == TOKEN_EOF)
            return;
        if (token.code == TOKEN_STRING || token.code == TOKEN_INTEGER) {
            m_statements.CheckDeclaration(token.code);
        } else if (token.code == TOKEN_FUNCTION) {
            ReadFunctionLine();
        } else {
            m_statements.ReportOutOfPlace(token, " (outside of all functions)");
            m_cursor.SkipLine();
        }
    }
}

void CScriptCheck::ReadFunctionLine() {
    const SourceToken& name = m_cursor.Peek();
    if (name.code != TOKEN_NAME) {
        m_findings.Add(m_cursor.Line(), ERR_MISSING, "name");
        return SkipFunction();
    }
    m_cursor.Take();
    m_functions.push_back(m_cursor.Position());
    CheckSymbol symbol;
    symbol.parameters = CountParameters();
    if (m_scope.Define(name.text, symbol) == nullptr)
        m_findings.Add(name.line, ERR_DUPLICATE, name.text);
    if (name.text == "main") {
        m_pMain = &name;
        m_nMainParameters = *symbol.parameters;
    }
    SkipFunction();
}

std::size_t CScriptCheck::CountParameters() {
    const std::size_t start = m_cursor.Position();
    std::size_t count = 0;
    if (m_cursor.Accept('(') && m_cursor.Peek().code != ')') {
        count = 1;
        for (BYTE code = m_cursor.Peek().code; code != ')' && code != '{' && code != TOKEN_EOF;
             code = m_cursor.Peek().code)
            count += m_cursor.Take().code == ',' ? 1 : 0;
    }
    m_cursor.Seek(start);
    return count;
}

// Up to and with the ENDFUNCTION; one function inside of another is told when that is checked.
void CScriptCheck::SkipFunction() {
    for (int open = 1; open > 0;) {
        const BYTE code = m_cursor.Take().code;
        if (code == TOKEN_EOF)
            return;
        open += (code == TOKEN_FUNCTION ? 1 : 0) - (code == TOKEN_ENDFUNCTION ? 1 : 0);
    }
}

void CScriptCheck::CheckMain() {
    if (m_pMain == nullptr)
        m_findings.Add(1, ERR_NO_MAIN);
    else if (m_nMainParameters > 0)
        m_findings.Add(m_pMain->line, ERR_ARG_COUNT);
}
