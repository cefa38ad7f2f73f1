// How: an expression that cannot be understood any further costs the rest of its line. Where a
// block cannot, each Read... around it is false, up to the function, which is given up.
#include "script/StatementCheck.h"

#include "script/KeywordTable.h"
#include "script/ScriptError.h"

void CStatementCheck::CheckFunction() {
    m_scope.Open();
    const bool isRead = ReadParameters() && ReadBlock() && m_expressions.Expect(TOKEN_ENDFUNCTION);
    m_scope.Close();
    if (isRead)
        return;
    m_cursor.SkipTo(TOKEN_ENDFUNCTION);
    m_cursor.Accept(TOKEN_ENDFUNCTION);
}

// False when the body cannot be found.
bool CStatementCheck::ReadParameters() {
    bool isRead = m_expressions.Expect('(');
    if (isRead && !m_cursor.Accept(')')) {
        do {
            isRead = ReadParameter();
        } while (isRead && m_cursor.Accept(','));
        isRead = isRead && m_expressions.Expect(')');
    }
    if (!isRead)
        m_cursor.SkipLine();
    else if (m_cursor.Peek().code != '{')
        ReportOutOfPlace(m_cursor.Peek(), {});
    if (m_cursor.Peek().code != '{')
        m_cursor.SkipLine();
    return m_cursor.Peek().code == '{';
}

bool CStatementCheck::ReadParameter() {
    const SourceToken& type = m_cursor.Peek();
    const bool isText = type.code == TOKEN_STRING;
    if (!isText && type.code != TOKEN_INTEGER) {
        m_findings.Add(type.line, ERR_PARAM, type.text);
        return false;
    }
    m_cursor.Take();
    CheckSymbol symbol;
    symbol.size = isText ? kSizeCharacter : kSizeWord;
    symbol.depth = isText ? 1 : 0;
    while (m_cursor.Accept('@'))
        if (symbol.depth < kMostReferences)
            ++symbol.depth;
    const SourceToken& name = m_cursor.Peek();
    if (!m_expressions.Expect(TOKEN_NAME))
        return false;
    if (m_scope.Define(name.text, symbol) == nullptr)
        m_findings.Add(name.line, ERR_DUPLICATE, name.text);
    return true;
}

bool CStatementCheck::ReadBlock() {
    if (!m_expressions.Expect('{') || !m_expressions.Enter())
        return false;
    m_scope.Open();
    const bool isRead = ReadBlockBody();
    m_scope.Close();
    m_expressions.Leave();
    return isRead;
}

bool CStatementCheck::ReadBlockBody() {
    for (BYTE type = m_cursor.Peek().code; type == TOKEN_STRING || type == TOKEN_INTEGER;
         type = m_cursor.Peek().code) {
        m_cursor.Take();
        CheckDeclaration(type);
    }
    while (m_cursor.Peek().code != '}')
        if (!ReadStatement())
            return false;
    m_cursor.Take();
    return true;
}

bool CStatementCheck::ReadStatement() {
    const SourceToken& token = m_cursor.Peek();
    const BYTE code = token.code;
    if (code == '{')
        return ReadBlock();
    if (code == TOKEN_NAME || code == '(' || code == '@') {
        CheckValue value;
        if (!m_expressions.Check(value))
            m_cursor.SkipLine();
        return true;
    }
    m_cursor.Take();
    return ReadKeyword(token);
}

// The statement behind its first code.
bool CStatementCheck::ReadKeyword(const SourceToken& token) {
    switch (token.code) {
    case TOKEN_GOTO:
    case TOKEN_EXITFOR:
    case TOKEN_EXITWHILE:
        return true;
    case TOKEN_RETURN:
        ReadReturn();
        return true;
    case TOKEN_IF:
    case TOKEN_ELSEIF:
    case TOKEN_FOR:
    case TOKEN_WHILE:
    case TOKEN_SELECT:
        return ReadNested(token.code);
    default:
        ReportOutOfPlace(token, {});
    }
    if (token.code == TOKEN_STRING || token.code == TOKEN_INTEGER) {
        CheckDeclaration(token.code);
        return true;
    }
    m_cursor.SkipLine();
    // Another keyword belongs to a block that is none.
    return FindKeyword(token.text) == 0 && token.code != TOKEN_EOF;
}

bool CStatementCheck::ReadNested(BYTE code) {
    if (!m_expressions.Enter())
        return false;
    const bool isRead = ReadControl(code);
    m_expressions.Leave();
    return isRead;
}

bool CStatementCheck::ReadControl(BYTE code) {
    switch (code) {
    case TOKEN_FOR:
        return ReadFor();
    case TOKEN_WHILE:
        return ReadWhile();
    case TOKEN_SELECT:
        return ReadSelect();
    default:
        return ReadIf();
    }
}

// The block that a line opens, whose end must have come. False when there is none.
bool CStatementCheck::ReadBody(bool isLineRead) {
    if (isLineRead && m_cursor.Peek().code != '{')
        ReportOutOfPlace(m_cursor.Peek(), {});
    if (m_cursor.Peek().code != '{')
        m_cursor.SkipLine();
    return ReadBlock();
}

bool CStatementCheck::ReadCondition() {
    CheckValue value;
    return m_expressions.Check(value) && m_expressions.Expect(TOKEN_THEN);
}

// An ELSE and an IF in one line, which the tokens have been told of, are an ELSEIF.
bool CStatementCheck::ReadIf() {
    if (!ReadBody(ReadCondition()))
        return false;
    while (m_cursor.Accept(TOKEN_ELSEIF))
        if (!ReadBody(ReadCondition()))
            return false;
    while (m_cursor.Accept(TOKEN_ELSE)) {
        const bool isLast = !m_cursor.Accept(TOKEN_IF);
        if (!ReadBody(isLast || ReadCondition()))
            return false;
        if (isLast)
            break;
        while (m_cursor.Accept(TOKEN_ELSEIF))
            if (!ReadBody(ReadCondition()))
                return false;
    }
    m_cursor.Accept(TOKEN_ENDIF);
    return true;
}

bool CStatementCheck::ReadFor() {
    CheckValue control, end, step;
    bool isRead = m_expressions.CheckPlace(control);
    if (isRead && control.isKnown && !control.isLocation)
        m_findings.Add(m_cursor.Line(), ERR_SYNTAX);
    isRead = isRead && m_expressions.Expect(TOKEN_TO) && m_expressions.Check(end) &&
             (!m_cursor.Accept(TOKEN_STEP) || m_expressions.Check(step));
    if (!ReadBody(isRead) || !m_expressions.Expect(TOKEN_NEXT))
        return false;
    CheckValue name;
    if (!m_cursor.AcceptEol() && !m_expressions.Check(name))
        m_cursor.SkipLine();
    return true;
}

bool CStatementCheck::ReadWhile() {
    CheckValue condition;
    return ReadBody(m_expressions.Check(condition)) && m_expressions.Expect(TOKEN_WEND);
}

bool CStatementCheck::ReadSelect() {
    CheckValue selector;
    const bool isRead = m_expressions.CheckPlace(selector);
    if (isRead && m_cursor.Peek().code != '{')
        ReportOutOfPlace(m_cursor.Peek(), {});
    if (m_cursor.Peek().code != '{')
        m_cursor.SkipLine();
    if (!m_expressions.Expect('{'))
        return false;
    ReadEmptyBlock();
    bool isDefault = false;
    do {
        if (isDefault)
            m_findings.Add(m_cursor.Line(), ERR_MISSING, TokenName(TOKEN_ENDSELECT));
        if (!m_expressions.Expect(TOKEN_CASE) || !ReadCase(isDefault))
            return false;
    } while (!m_cursor.Accept(TOKEN_ENDSELECT));
    return true;
}

// What stands between SELECT and the first CASE is never run.
void CStatementCheck::ReadEmptyBlock() {
    for (int open = 1; open > 0;) {
        const SourceToken& token = m_cursor.Peek();
        if (token.code == TOKEN_EOF)
            return;
        open += (token.code == '{' ? 1 : 0) - (token.code == '}' ? 1 : 0);
        if (open > 0)
            ReportOutOfPlace(token, " (before the first CASE)");
        m_cursor.Take();
        if (open > 0)
            m_cursor.SkipLine();
    }
}

bool CStatementCheck::ReadCase(bool& isDefault) {
    bool isRead = true;
    isDefault = m_cursor.Accept(TOKEN_DEFAULT);
    if (!isDefault) {
        do {
            CheckValue value;
            isRead = m_expressions.Check(value);
        } while (isRead && m_cursor.Accept(','));
    }
    return ReadBody(isRead);
}

void CStatementCheck::ReadReturn() {
    CheckValue value;
    if (!m_cursor.AcceptEol() && !m_expressions.Check(value))
        m_cursor.SkipLine();
}

void CStatementCheck::CheckDeclaration(BYTE type) {
    do {
        if (!ReadDeclarator(type))
            return m_cursor.SkipLine();
    } while (m_cursor.Accept(','));
}

bool CStatementCheck::ReadDeclarator(BYTE type) {
    const bool isText = type == TOKEN_STRING;
    CheckSymbol symbol;
    symbol.size = isText ? kSizeCharacter : kSizeWord;
    while (m_cursor.Accept('@'))
        if (symbol.depth++ == kMostReferences) {
            m_findings.Add(m_cursor.Line(), ERR_SYNTAX);
            return false;
        }
    const SourceToken& name = m_cursor.Peek();
    if (!m_expressions.Expect(TOKEN_NAME))
        return false;
    if (isText && !name.text.ends_with('$'))
        m_findings.Add(name.line, ERR_STRING_NAME, name.text);
    symbol.isArray = m_cursor.Peek().code == '[';
    symbol.depth = static_cast<BYTE>(symbol.depth + (isText ? 1 : 0) + (symbol.isArray ? 1 : 0));
    CheckSymbol* entry = m_scope.Define(name.text, symbol);
    if (entry == nullptr)
        m_findings.Add(name.line, ERR_DUPLICATE, name.text);
    if (symbol.isArray && !ReadDimension(entry != nullptr ? *entry : symbol, name.text))
        return false;
    if (!m_cursor.Accept('='))
        return true;
    CheckValue value;
    return symbol.isArray ? ReadElements(entry != nullptr ? *entry : symbol, name.text)
                          : m_expressions.Check(value);
}

bool CStatementCheck::ReadDimension(CheckSymbol& symbol, std::string_view name) {
    m_cursor.Take();
    CheckValue dimension;
    if (m_cursor.Peek().code == ']')
        dimension.constant = 0;
    else if (!m_expressions.Check(dimension))
        return false;
    if (dimension.constant && *dimension.constant <= 0)
        m_findings.Add(m_cursor.Line(), ERR_NO_DIMENSION, name);
    else
        symbol.elements = dimension.constant;
    return m_expressions.Expect(']');
}

bool CStatementCheck::ReadElements(const CheckSymbol& symbol, std::string_view name) {
    if (!m_expressions.Expect('('))
        return false;
    std::int32_t count = 0;
    do {
        CheckValue value;
        if (!m_expressions.Check(value))
            return false;
        ++count;
    } while (m_cursor.Accept(','));
    if (symbol.elements && count > *symbol.elements)
        m_findings.Add(m_cursor.Line(), ERR_TOO_MANY, name);
    return m_expressions.Expect(')');
}
