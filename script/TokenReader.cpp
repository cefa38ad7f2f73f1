// How: the marks stand beside the stream, one for each byte, so that the text, number, name or
// bracket at a position is found by one look.
#include "script/TokenReader.h"

#include "script/KeywordTable.h"
#include "script/NibbleText.h"

#include <algorithm>
#include <string_view>

void CTokenReader::Prepare(BYTE* region, DWORD start, DWORD end) {
    m_pRegion = region;
    m_pStart = start;
    m_pEnd = end;
    m_pPos = start;
    m_marks.assign(end + 1, InlineText{});
    region[end] = TOKEN_EOF;
    for (DWORD position = start; position < end;) {
        const BYTE code = region[position++];
        if (HasInlineText(code))
            position = NoteText(code, position);
        else
            NoteBracket(position - 1);
    }
    m_openBraces.clear();
    m_openParentheses.clear();
}

DWORD CTokenReader::NoteText(BYTE code, DWORD position) {
    const BYTE* text = m_pRegion + position;
    const BYTE* end = std::find(text, static_cast<const BYTE*>(m_pRegion + m_pEnd), BYTE{0});
    const std::string_view inlineText(reinterpret_cast<const char*>(text),
                                      static_cast<std::size_t>(end - text));
    InlineText& mark = m_marks[position];
    mark.next = std::min(position + static_cast<DWORD>(inlineText.size()) + 1, m_pEnd);
    if (code == TOKEN_NUMBER)
        mark.payload = static_cast<std::int32_t>(DecodeNumber(inlineText));
    else if (code == TOKEN_NAME)
        mark.payload = static_cast<std::int32_t>(m_names.Intern(inlineText));
    return mark.next;
}

// Each kind is counted by itself: a brace does not care for parentheses that are left open.
void CTokenReader::NoteBracket(DWORD position) {
    const BYTE code = m_pRegion[position];
    const bool isBrace = code == '{' || code == '}';
    if (!isBrace && code != '(' && code != ')')
        return;
    std::vector<DWORD>& open = isBrace ? m_openBraces : m_openParentheses;
    if (code == '{' || code == '(') {
        open.push_back(position);
    } else if (!open.empty()) {
        m_marks[open.back()].next = position + 1;
        open.pop_back();
    }
}

void CTokenReader::SkipBalanced(BYTE open) {
    Expect(open);
    if (m_report.HasError())
        return;
    const DWORD behind = BehindClosing();
    if (behind == 0)
        m_report.ReportError(ERR_UNMATCHED, TokenName(open),
                             static_cast<std::int32_t>(CurrentLine()));
    else
        Seek(behind);
}

// Line ends right before the position have been passed over in search of the next code: the line
// is still that of the code before them.
DWORD CTokenReader::LineAt(DWORD position) const {
    if (position < m_pStart || position >= m_pEnd)
        return 0;
    while (position > m_pStart && m_pRegion[position - 1] == TOKEN_EOL)
        --position;
    const BYTE* const first = m_pRegion + m_pStart;
    const BYTE* const last = m_pRegion + position;
    return 1 + static_cast<DWORD>(std::count(first, last, TOKEN_EOL));
}

void CTokenReader::ReportMissing(BYTE code, DWORD position) {
    m_report.ReportError(ERR_MISSING, TokenName(code), static_cast<std::int32_t>(LineAt(position)));
}
