// How: operands and operators are read in the engine's order with a CheckValue in place of the
// value; where something is not known any more (isKnown), everything fits.
#include "script/ExpressionCheck.h"

#include "script/KeywordTable.h"
#include "script/OperatorLevels.h"
#include "script/ScriptDepth.h"
#include "script/ScriptError.h"

namespace {

using Kind = CheckValue::Kind;

bool IsOperator(const SourceToken& token, BYTE level) {
    return kOperatorLevels[token.code] >= level;
}

// How a token is named in a finding.
std::string Describe(const SourceToken& token) {
    switch (token.code) {
    case '{':
        return token.text.empty() ? "end of line" : "{";
    case '}':
        return token.text.empty() ? "end of the block" : "}";
    case TOKEN_EOF:
        return "end of file";
    case TOKEN_LITERAL:
        return '"' + std::string(token.text) + '"';
    default:
        return std::string(token.text);
    }
}

std::string DescribeCode(BYTE code) {
    return code == TOKEN_NAME ? "name" : code == '{' ? "end of line" : TokenName(code);
}

} // namespace

bool CExpressionCheck::Enter() {
    if (++m_nDepth <= CScriptDepth::kMostLevels)
        return true;
    m_findings.Add(m_cursor.Line(), ERR_MEMORY);
    --m_nDepth;
    return false;
}

bool CExpressionCheck::Expect(BYTE code) {
    const DWORD line = m_cursor.Line();
    if (m_cursor.Accept(code))
        return true;
    m_findings.Add(line, ERR_MISSING, DescribeCode(code));
    return false;
}

void CExpressionCheck::ReportOutOfPlace(const SourceToken& token, std::string_view remark) {
    m_findings.Add(token.line, ERR_OUT_OF_PLACE, Describe(token).append(remark));
}

bool CExpressionCheck::Check(CheckValue& value) {
    const bool isRead = CheckPlace(value);
    Load(value);
    return isRead;
}

bool CExpressionCheck::CheckPlace(CheckValue& value) {
    if (!Enter())
        return false;
    const bool isRead = ReadAssignment(value);
    Leave();
    return isRead;
}

bool CExpressionCheck::ReadAssignment(CheckValue& value) {
    if (!ReadUnary(value))
        return false;
    if (IsOperator(m_cursor.Peek(), kLoosestLevel) && !ReadOperators(value, kLoosestLevel))
        return false;
    while (m_cursor.Peek().code == '=') {
        const DWORD line = m_cursor.Take().line;
        CheckValue right;
        if (!Check(right))
            return false;
        const bool isFunction = value.symbol != nullptr && value.size == kSizeFunction;
        if (value.isKnown && (!value.isLocation || isFunction))
            m_findings.Add(line, ERR_SYNTAX);
        value.kind = Kind::Unknown;
        value.constant.reset();
    }
    return true;
}

bool CExpressionCheck::ReadOperators(CheckValue& left, BYTE level) {
    if (!Enter())
        return false;
    bool isRead = true;
    while (isRead && IsOperator(m_cursor.Peek(), level)) {
        const SourceToken& token = m_cursor.Take();
        const BYTE inner = kOperatorLevels[token.code];
        Load(left);
        CheckValue right;
        isRead = ReadUnary(right) &&
                 (!IsOperator(m_cursor.Peek(), inner) || ReadOperators(right, inner));
        Load(right);
        if (isRead)
            Apply(left, token.code, right, token.line);
    }
    Leave();
    return isRead;
}

void CExpressionCheck::Apply(CheckValue& left, BYTE operation, const CheckValue& right,
                             DWORD line) {
    const bool isMixed = left.kind == Kind::Text && right.kind == Kind::Number;
    const bool takesText = operation == '+' || operation == TOKEN_EQ || operation == TOKEN_NE;
    if (isMixed && takesText)
        m_findings.Add(line, ERR_SYNTAX);
    left.constant.reset();
    if (operation == '-')
        left.kind = Kind::Number;
    const bool isDistance = operation == '-' && right.depth > 0;
    if (operation == '+' || (operation == '-' && !isDistance)) // keep what they refer to
        return;
    left.BecomePlain(Kind::Number);
}

bool CExpressionCheck::ReadUnary(CheckValue& value) {
    const std::size_t before = m_cursor.Position();
    const SourceToken& token = m_cursor.Take();
    const BYTE code = token.code;
    if (code == TOKEN_NOT || code == '-' || code == '@' || code == TOKEN_AND) {
        if (!Enter())
            return false;
        const bool isLocation = code == TOKEN_AND || m_cursor.Position() == m_nLocationAt;
        const bool isRead = ReadPrefixed(value, isLocation ? TOKEN_AND : code);
        Leave();
        return isRead;
    }
    if (!ReadOperand(value, token)) {
        if (code != '(') // it may be another line's
            m_cursor.Seek(before);
        return false;
    }
    const BYTE next = m_cursor.Peek().code;
    return next == '(' ? ReadCall(value) : next != '[' || ReadSubscript(value);
}

bool CExpressionCheck::ReadPrefixed(CheckValue& value, BYTE code) {
    const DWORD line = m_cursor.Line();
    if (!ReadUnary(value))
        return false;
    if (code == '@') {
        Dereference(value, line);
    } else if (code == TOKEN_AND) {
        if (value.isKnown && !value.isLocation)
            m_findings.Add(line, ERR_SYNTAX);
        value.BecomePlain(Kind::Number);
    } else {
        const auto constant = value.constant;
        value.BecomePlain(Kind::Number);
        if (constant && code == '-')
            value.constant = static_cast<std::int32_t>(0 - static_cast<DWORD>(*constant));
    }
    return true;
}

void CExpressionCheck::Dereference(CheckValue& value, DWORD line) {
    if (value.isKnown && value.depth == 0) {
        m_findings.Add(line, ERR_POINTER);
        value.isKnown = false;
    }
    const BYTE depth = value.depth == 0 ? BYTE{0} : static_cast<BYTE>(value.depth - 1);
    const BYTE size = depth > 0 ? kSizeWord : value.size;
    value.BecomePlain(Kind::Unknown);
    value.size = size;
    value.depth = depth;
    value.isLocation = true;
}

bool CExpressionCheck::ReadOperand(CheckValue& value, const SourceToken& token) {
    switch (token.code) {
    case TOKEN_NAME:
        ReadName(value, token);
        return true;
    case TOKEN_NUMBER:
        value.BecomePlain(Kind::Number);
        value.constant = token.number;
        return true;
    case TOKEN_LITERAL:
        value.BecomePlain(Kind::Text);
        return true;
    case '(':
        return CheckPlace(value) && Expect(')');
    default:
        ReportOutOfPlace(token);
        return false;
    }
}

void CExpressionCheck::ReadName(CheckValue& value, const SourceToken& token) {
    const CheckSymbol* symbol = m_scope.Find(token.text);
    value.isLocation = true;
    value.isKnown = symbol != nullptr;
    if (symbol == nullptr)
        return m_findings.Add(token.line, ERR_UNDEFINED, token.text);
    value.symbol = symbol;
    value.size = symbol->size;
    value.depth = symbol->depth;
    value.isArray = symbol->isArray;
    const bool isTextArray = symbol->isArray && symbol->size == kSizeCharacter;
    if (!isTextArray || m_cursor.Peek().code == '[')
        return;
    m_findings.Add(token.line, ERR_SYNTAX);
    value.isKnown = false;
}

// What is loaded from a place may be a number or a text.
void CExpressionCheck::Load(CheckValue& value) {
    if (value.isLocation)
        value.kind = Kind::Unknown;
    value.isLocation = false;
}

bool CExpressionCheck::ReadCall(CheckValue& value) {
    const DWORD line = m_cursor.Take().line;
    std::vector<CheckValue> arguments;
    if (!ReadArguments(arguments))
        return false;
    CheckCall(value, arguments, line);
    return true;
}

// An argument with "@" in front passes the location of its operand.
bool CExpressionCheck::ReadArguments(std::vector<CheckValue>& arguments) {
    if (m_cursor.Accept(')'))
        return true;
    do {
        if (m_cursor.Peek().code == '@')
            m_nLocationAt = m_cursor.Position() + 1;
        if (!Check(arguments.emplace_back()))
            return false;
    } while (m_cursor.Accept(','));
    return Expect(')');
}

void CExpressionCheck::CheckCall(CheckValue& value, const std::vector<CheckValue>& arguments,
                                 DWORD line) {
    const CheckSymbol* function = value.symbol;
    const bool isFunction = value.isLocation && function != nullptr && value.size == kSizeFunction;
    if (value.isKnown && !isFunction)
        m_findings.Add(line, ERR_SYNTAX);
    const bool isUndefined = !value.isKnown || !isFunction;
    value = {};
    if (isUndefined)
        return;
    if (function->builtin != nullptr) {
        CheckBuiltin(*function->builtin, arguments, line);
        value.kind = function->builtin->result == 't' ? Kind::Text : Kind::Number;
    } else if (function->parameters && *function->parameters != arguments.size()) {
        m_findings.Add(line, ERR_ARG_COUNT);
    }
}

void CExpressionCheck::CheckBuiltin(const BuiltinEntry& entry,
                                    const std::vector<CheckValue>& arguments, DWORD line) {
    const std::string_view kinds = entry.arguments;
    if (arguments.size() < kinds.size())
        return m_findings.Add(line, ERR_ARG_COUNT);
    for (std::size_t index = 0; index < kinds.size(); ++index)
        if (arguments[index].kind == (kinds[index] == 't' ? Kind::Number : Kind::Text))
            m_findings.Add(line, ERR_SYNTAX);
}

bool CExpressionCheck::ReadSubscript(CheckValue& value) {
    const DWORD line = m_cursor.Take().line;
    const CheckValue array = value;
    CheckValue index;
    if (!Check(index))
        return false;
    value = {};
    value.isLocation = true;
    value.isKnown = array.isKnown && array.isArray && array.depth > 0;
    if (!array.isKnown)
        return Expect(']');
    const bool isBehindEnd = index.constant && array.symbol != nullptr && array.symbol->elements &&
                             *index.constant > *array.symbol->elements;
    if (array.depth < 2 && array.size != kSizeWord)
        m_findings.Add(line, ERR_SYNTAX);
    else if (!array.isArray)
        m_findings.Add(line, ERR_NOT_ARRAY);
    else if (isBehindEnd || (index.constant && *index.constant < 1))
        m_findings.Add(line, ERR_BOUND);
    value.size = array.size;
    value.depth = array.depth == 0 ? BYTE{0} : static_cast<BYTE>(array.depth - 1);
    return Expect(']');
}
