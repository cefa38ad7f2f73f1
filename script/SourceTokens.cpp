// How: as the tokenizer does it, over the whole text at once. What is wrong becomes a finding, and
// a token that lets the rest of the line be read: a malformed number is a number, a text that does
// not end is one up to the end.
#include "script/SourceTokens.h"

#include "script/KeywordTable.h"
#include "script/ScriptError.h"
#include "script/SourceRules.h"

#include <algorithm>

namespace {

constexpr BYTE kEnd = 0xFF; // of the file; a byte of this value is it as well

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

} // namespace

CSourceTokens::CSourceTokens(std::string_view source, CCheckFindings& findings)
    : m_source(source.substr(0, source.find(static_cast<char>(kEnd)))), m_findings(findings) {
    if (m_source.starts_with(kByteOrderMark))
        m_nPosition = kByteOrderMark.size();
}

bool CSourceTokens::Read() {
    while (ReadOne()) {
    }
    Add(TOKEN_EOF, {});
    CheckNesting();
    return m_bNested;
}

BYTE CSourceTokens::Next() {
    return m_nPosition < m_source.size() ? static_cast<BYTE>(m_source[m_nPosition++]) : kEnd;
}

// A whole comment is the CR of its line's end; the LF follows.
BYTE CSourceTokens::NextSkippingComment() {
    const BYTE character = Next();
    if (character != '\'')
        return character;
    m_nPosition = std::min(m_source.find('\n', m_nPosition), m_source.size());
    if (m_nPosition < m_source.size())
        return '\r';
    FailAtEnd();
    return kEnd;
}

// False at the end of the source.
bool CSourceTokens::ReadOne() {
    std::size_t start = 0;
    BYTE first = 0;
    do {
        start = m_nPosition;
        first = NextSkippingComment();
    } while (first == ' ' || first == '\t');
    if (first == kEnd)
        return false;
    if (first == '"')
        ReadLiteral();
    else if (first == '\r')
        EndLine();
    else
        ReadWord(first, start);
    return true;
}

void CSourceTokens::ReadWord(BYTE first, std::size_t start) {
    if (IsWordCharacter(first))
        while (m_nPosition < m_source.size() &&
               IsWordCharacter(static_cast<BYTE>(m_source[m_nPosition])))
            ++m_nPosition;
    AddWord(m_source.substr(start, m_nPosition - start));
}

void CSourceTokens::AddWord(std::string_view word) {
    const BYTE first = static_cast<BYTE>(word.front());
    DWORD number = 0;
    if (const BYTE keyword = FindKeyword(word); keyword != 0) {
        ApplyBlocks(keyword);
        Add(keyword, word);
    } else if (word.size() == 1 && IsDelimiter(first)) {
        AddDelimiter(word);
    } else if (IsNameStart(first)) {
        Add(TOKEN_NAME, word);
    } else if (ReadNumber(word, number)) {
        Add(TOKEN_NUMBER, word, static_cast<std::int32_t>(number));
    } else if (first != '\n') {
        m_findings.Add(m_nLine, ERR_CHAR, word);
        if (IsDigit(first))
            Add(TOKEN_NUMBER, word, 1);
    } else {
        // One line of another system tells about all of them.
        if (!m_bUnixLineEnds)
            m_findings.Add(m_nLine, ERR_CHAR, "LF without CR at the end of the line");
        m_bUnixLineEnds = true;
        --m_nPosition;
        EndLine();
    }
}

void CSourceTokens::AddDelimiter(std::string_view word) {
    BYTE code = static_cast<BYTE>(word.front());
    if (code != '}' && m_nPosition == m_source.size())
        return FailAtEnd();
    const BYTE next = code == '}' ? kEnd : static_cast<BYTE>(m_source[m_nPosition]);
    const auto* pair = std::ranges::find_if(
        kPairs, [&](const PairRow& row) { return row.first == code && row.second == next; });
    if (pair != kPairs.end()) {
        code = pair->code;
        ++m_nPosition;
    }
    const bool compares = m_stacks[NEST_IF].m_bEquality || m_stacks[NEST_WHILE].m_bEquality;
    Add(code == '=' && compares ? TOKEN_EQ : code, word);
}

void CSourceTokens::ReadLiteral() {
    const std::size_t start = m_nPosition;
    const DWORD line = m_nLine;
    for (BYTE character = Next(); character != '"'; character = Next()) {
        if (character == kEnd) {
            m_findings.Add(line, ERR_EOF);
            break;
        }
        if (character == '\n')
            ++m_nLine;
        if (character == '\\' && !ReadEscape())
            break;
    }
    const std::size_t end = m_nPosition - (m_nPosition > start ? 1 : 0);
    m_tokens.push_back({TOKEN_LITERAL, line, m_source.substr(start, end - start), 0});
}

// False at the end of the source.
bool CSourceTokens::ReadEscape() {
    const BYTE character = Next();
    if (character == kEnd) {
        FailAtEnd();
        return false;
    }
    if (kEscapes.find(static_cast<char>(character)) != std::string_view::npos)
        return true;
    DWORD value = 0;
    const bool isHex = character == 'x' || character == 'X';
    if (isHex && (!ReadHexDigit(value) || !ReadHexDigit(value)))
        return true;
    if (value == 0)
        m_findings.Add(m_nLine, ERR_ESCAPE);
    return true;
}

// False after a finding; what is no digit stays to be read.
bool CSourceTokens::ReadHexDigit(DWORD& value) {
    const BYTE digit = m_nPosition < m_source.size()
                           ? HexValue(static_cast<BYTE>(m_source[m_nPosition]))
                           : BYTE{16};
    if (digit == 16) {
        m_findings.Add(m_nLine, ERR_OUT_OF_PLACE,
                       m_source.substr(std::min(m_nPosition, m_source.size()), 1));
        return false;
    }
    ++m_nPosition;
    value = value << 4 | digit;
    return true;
}

void CSourceTokens::EndLine() {
    Add(TOKEN_EOL, {});
    NextSkippingComment();
    if (m_bBracePending) {
        Add('{', {});
        m_bBracePending = false;
        m_stacks[NEST_IF].m_bEquality = false;
        m_stacks[NEST_WHILE].m_bEquality = false;
    }
    ++m_nLine;
}

void CSourceTokens::Add(BYTE code, std::string_view text, std::int32_t number) {
    m_tokens.push_back({code, m_nLine, text, number});
}

void CSourceTokens::ApplyBlocks(BYTE code) {
    const auto* rule = std::ranges::find(kBlockRules, code, &BlockRule::code);
    if (rule == kBlockRules.end())
        return;
    CNestStack& stack = m_stacks[rule->kind];
    // An IF behind ELSE opens no other block: it is meant as an ELSEIF.
    const bool isElseIf =
        code == TOKEN_IF && !m_tokens.empty() && m_tokens.back().code == TOKEN_ELSE;
    if (isElseIf)
        m_findings.Add(m_nLine, ERR_OUT_OF_PLACE, "IF (ELSEIF is one word)");
    const bool isNested =
        isElseIf || rule->nesting == BlockRule::Nesting::Nothing ||
        (rule->nesting == BlockRule::Nesting::Push ? stack.Push(m_nLine) : stack.Pop());
    if (!isNested) {
        m_findings.Add(m_nLine, ERR_IF + rule->kind);
        m_bNested = false;
    }
    if (code == TOKEN_ELSEIF || isElseIf)
        stack.m_bEquality = true;
    m_bBracePending = m_bBracePending || rule->opensBlock;
    if (rule->closesBlock)
        Add('}', {});
}

void CSourceTokens::CheckNesting() {
    for (DWORD kind = 0; kind < NEST_KINDS; ++kind) {
        for (CNestStack& stack = m_stacks[kind]; !stack.IsEmpty(); stack.Pop()) {
            m_findings.Add(stack.Top(), ERR_IF + kind);
            m_bNested = false;
        }
    }
}

void CSourceTokens::FailAtEnd() {
    m_nPosition = m_source.size();
    m_findings.Add(m_nLine, ERR_EOF);
}
