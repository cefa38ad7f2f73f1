// How: a word is written into the stream where its token will stand, and classified there; most
// codes then overwrite it. A closing keyword writes the "}" before itself, an opening one has the
// "{" written at the end of its line.
#include "script/Tokenizer.h"

#include "script/KeywordTable.h"
#include "script/NibbleText.h"
#include "script/SourceRules.h"
#include "script/TokenCodes.h"

#include <algorithm>
#include <cstring>

bool CTokenizer::ApplyBlockRule(BYTE code) {
    const auto* rule = std::ranges::find(kBlockRules, code, &BlockRule::code);
    if (rule == kBlockRules.end())
        return true;
    CNestStack& stack = m_stacks[rule->kind];
    using Nesting = BlockRule::Nesting;
    const bool isNested = rule->nesting == Nesting::Nothing ||
                          (rule->nesting == Nesting::Push ? stack.Push(m_nLine) : stack.Pop());
    if (!isNested)
        return Fail(ERR_IF + rule->kind);
    if (code == TOKEN_ELSEIF)
        stack.m_bEquality = true;
    if (rule->opensBlock)
        m_bBracePending = true;
    if (rule->closesBlock) {
        m_area.Bytes()[m_pPos - 1] = '}';
        ++m_pPos;
    }
    return true;
}

CTokenizer::CTokenizer(HANDLE file, CScriptArea& area, CScriptReport& report)
    : m_area(area), m_report(report), m_file(file, area.Bytes()) {
    static_assert(CScriptFile::kBufferSize == CScriptArea::kReadBuffer);
    m_report.SetLineSource(this);
}

bool CTokenizer::Tokenize() {
    BYTE code = 0;
    while (code != TOKEN_EOF) {
        if (m_area.IsNearLimit(m_pPos) && !m_area.GrowArea(1)) {
            m_report.ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::kNoLine);
            return false;
        }
        if (!ReadToken(code))
            return false;
    }
    if (!CheckNesting())
        return false;
    if (m_pPos % 2 != 0)
        m_area.Bytes()[m_pPos++] = TOKEN_EOF;
    return true;
}

bool CTokenizer::ReadToken(BYTE& code) {
    ++m_pPos;
    bool isLiteral = false;
    if (!ReadWord(isLiteral))
        return false;
    code = ClassifyWord(isLiteral);
    if (code == 0)
        return false;
    const bool compares = m_stacks[NEST_IF].m_bEquality || m_stacks[NEST_WHILE].m_bEquality;
    if (code == '=' && compares)
        code = TOKEN_EQ;
    if (!ApplyBlockRule(code))
        return false;
    m_area.Bytes()[m_pPos - 1] = code;
    if (HasInlineText(code))
        m_pPos = m_pWordEnd;
    return code != TOKEN_EOL || FinishLine();
}

bool CTokenizer::FinishLine() {
    BYTE lineFeed = 0;
    if (!ReadSkippingComment(lineFeed))
        return false;
    if (m_bBracePending) {
        m_area.Bytes()[m_pPos++] = '{';
        m_bBracePending = false;
        m_stacks[NEST_IF].m_bEquality = false;
        m_stacks[NEST_WHILE].m_bEquality = false;
    }
    ++m_nLine;
    return true;
}

bool CTokenizer::CheckNesting() {
    for (DWORD kind = 0; kind < NEST_KINDS; ++kind) {
        if (m_stacks[kind].IsEmpty())
            continue;
        m_report.ReportError(ERR_IF + kind, {}, static_cast<std::int32_t>(m_stacks[kind].Top()));
        return false;
    }
    return true;
}

bool CTokenizer::ReadWord(bool& isLiteral) {
    m_pWordEnd = m_pPos;
    BYTE first = 0;
    do {
        if (!ReadSkippingComment(first))
            return false;
    } while (first == ' ' || first == '\t');
    isLiteral = first == '"';
    return (isLiteral ? ReadLiteral() : ReadPlainWord(first)) && Put(0);
}

bool CTokenizer::ReadPlainWord(BYTE first) {
    if (!Put(first))
        return false;
    if (!IsWordCharacter(first))
        return true;
    for (;;) {
        BYTE character = 0;
        if (!ReadSkippingComment(character))
            return false;
        if (!IsWordCharacter(character)) {
            m_file.PushBack(character);
            return true;
        }
        if (!Put(character))
            return false;
    }
}

bool CTokenizer::ReadLiteral() {
    for (;;) {
        const BYTE character = ReadNeeded();
        if (character == CScriptFile::kEndOfFile)
            return false;
        if (character == '"')
            return true;
        if (!(character == '\\' ? ReadEscape() : Put(character)))
            return false;
    }
}

bool CTokenizer::ReadEscape() {
    const BYTE character = ReadNeeded();
    if (character == CScriptFile::kEndOfFile)
        return false;
    const std::size_t row = kEscapes.find(static_cast<char>(character));
    if (row != std::string_view::npos)
        return Put(static_cast<BYTE>(kEscaped[row]));
    if (character != 'x' && character != 'X')
        return Fail(ERR_ESCAPE);
    BYTE high = 0;
    BYTE low = 0;
    if (!ReadHexDigit(high) || !ReadHexDigit(low))
        return false;
    const BYTE value = static_cast<BYTE>(high << 4 | low);
    return value == 0 ? Fail(ERR_ESCAPE) : Put(value);
}

bool CTokenizer::ReadHexDigit(BYTE& value) {
    const BYTE character = ReadNeeded();
    if (character == CScriptFile::kEndOfFile)
        return false;
    value = HexValue(character);
    const char detail = static_cast<char>(character);
    return value < 16 || Fail(ERR_OUT_OF_PLACE, {&detail, 1});
}

std::string_view CTokenizer::Word() const {
    return {reinterpret_cast<const char*>(m_area.Bytes()) + m_pPos, m_pWordEnd - 1 - m_pPos};
}

BYTE CTokenizer::ClassifyWord(bool isLiteral) {
    if (isLiteral)
        return TOKEN_LITERAL;
    const std::string_view word = Word();
    if (const BYTE keyword = FindKeyword(word); keyword != 0)
        return keyword;
    const BYTE first = static_cast<BYTE>(word.front());
    if (word.size() == 1 && IsDelimiter(first))
        return ClassifyDelimiter(first);
    if (IsNameStart(first))
        return TOKEN_NAME;
    if (const BYTE number = ClassifyNumber(word); number != 0)
        return number;
    m_bUnixLineEnds = word == "\n";
    Fail(ERR_CHAR, word);
    return 0;
}

BYTE CTokenizer::ClassifyDelimiter(BYTE character) {
    if (character == TOKEN_EOF || character == '}')
        return character;
    const BYTE next = ReadNeeded();
    if (next == CScriptFile::kEndOfFile)
        return 0;
    for (const PairRow& pair : kPairs)
        if (character == pair.first && next == pair.second)
            return pair.code;
    m_file.PushBack(next);
    return character;
}

BYTE CTokenizer::ClassifyNumber(std::string_view word) {
    DWORD value = 0;
    if (!ReadNumber(word, value))
        return 0;
    // Never longer than the digits it replaces.
    const std::string text = EncodeNumber(value);
    std::memcpy(m_area.Bytes() + m_pPos, text.c_str(), text.size() + 1);
    m_pWordEnd = m_pPos + static_cast<DWORD>(text.size()) + 1;
    return TOKEN_NUMBER;
}

bool CTokenizer::Put(BYTE character) {
    // The margin behind a token is for the codes that follow it.
    if (m_area.IsNearLimit(m_pWordEnd) && !m_area.GrowArea(1)) {
        m_report.ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::kNoLine);
        return false;
    }
    m_area.Bytes()[m_pWordEnd++] = character;
    return true;
}

// A script may end anywhere but inside of a comment.
bool CTokenizer::ReadSkippingComment(BYTE& character) {
    character = m_file.ReadCharSkipComment();
    return character != CScriptFile::kEndOfFile || !m_file.EndedInComment() || FailAtEnd();
}

// Where a script must not end.
BYTE CTokenizer::ReadNeeded() {
    const BYTE character = m_file.ReadChar();
    if (character == CScriptFile::kEndOfFile)
        FailAtEnd();
    return character;
}

bool CTokenizer::Fail(DWORD error, std::string_view detail) {
    m_report.ReportError(error, detail);
    return false;
}

bool CTokenizer::FailAtEnd() {
    m_report.ReportError(ERR_EOF, {}, CScriptReport::kNoLine);
    return false;
}
