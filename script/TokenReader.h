// CTokenReader: reads the token stream; the only thing that moves m_pPos.
//
// Owned by the engine; used from the script's thread. Prepare looks once through the finished
// stream and notes what would otherwise be found again on every pass: where each inline text ends,
// what number or name it is, and where each bracket is closed. All of it depends on the stream
// alone, which never changes afterwards but for the rewriting of "@" to "&". A reader that has come
// to the end reads TOKEN_EOF for ever.
#pragma once

#include "platform/Types.h"
#include "script/NameTable.h"
#include "script/ScriptReport.h"
#include "script/TokenCodes.h"

#include <vector>

class CTokenReader final : public ILineSource {
  public:
    CTokenReader(CNameTable& names, CScriptReport& report) : m_names(names), m_report(report) {}

    // Takes the stream, from start up to end in the region's bytes, interns its names and stands at
    // its first code. The bytes must outlive the reader's use; the one behind the end becomes a
    // TOKEN_EOF that is never consumed, so that nothing is read behind it.
    void Prepare(BYTE* region, DWORD start, DWORD end);

    // The next code after line ends, consumed. The text behind "C", "I" and "S" is not.
    BYTE NextToken() {
        const BYTE code = Peek();
        m_pPos += code == TOKEN_EOF ? m_pEnd - m_pPos : 1;
        return code;
    }
    // The same, not consumed; line ends before it are.
    BYTE Peek() {
        while (m_pRegion[m_pPos] == TOKEN_EOL)
            ++m_pPos;
        return m_pRegion[m_pPos];
    }
    // Gives back the code just read.
    void StepBack() { --m_pPos; }
    // Consumes the code that Peek has just shown.
    void Take() { ++m_pPos; }

    // Consumes the code if it is the next one.
    bool Accept(BYTE code) {
        if (Peek() != code)
            return false;
        ++m_pPos;
        return true;
    }
    // Consumes one line end if it follows directly.
    bool AcceptEol() {
        if (m_pRegion[m_pPos] != TOKEN_EOL)
            return false;
        ++m_pPos;
        return true;
    }
    // Consumes the code, reported as missing, by the line before the next one, if that is another.
    void Expect(BYTE code) {
        const DWORD before = m_pPos;
        if (!Accept(code))
            ReportMissing(code, before);
    }
    // Consumes an opening bracket, "{" or "(", and all up to the one that closes it; reports it as
    // unmatched when nothing does.
    void SkipBalanced(BYTE open);

    // Consumes a block if one that is closed follows.
    bool SkipBlock() {
        if (Peek() != '{' || m_marks[m_pPos].next == 0)
            return false;
        m_pPos = m_marks[m_pPos].next;
        return true;
    }

    // Steps over the inline text at m_pPos.
    void SkipText() { m_pPos = m_marks[m_pPos].next; }
    // What the inline text at m_pPos is: a number's value, a name's number in the name table.
    std::int32_t Number() const { return m_marks[m_pPos].payload; }
    DWORD Name() const { return static_cast<DWORD>(m_marks[m_pPos].payload); }
    // Where the bracket that was just consumed is closed: the position behind; 0: nowhere.
    DWORD BehindClosing() const { return m_marks[m_pPos - 1].next; }

    // Where the next code is that is no line end, from a position on, and what it is.
    DWORD PositionOfCode(DWORD position) const {
        while (m_pRegion[position] == TOKEN_EOL)
            ++position;
        return position;
    }
    BYTE CodeAt(DWORD position) const { return m_pRegion[position]; }
    // The inline text of the code that Peek has just shown: what it is, and where the next code is.
    struct InlineText {
        std::int32_t payload;
        DWORD next;
    };
    InlineText PeekText() const { return m_marks[m_pPos + 1]; }

    // Makes the "@" that Peek has just shown an "&", for good.
    void RewriteReference() { m_pRegion[m_pPos] = TOKEN_AND; }

    DWORD Position() const { return m_pPos; }
    void Seek(DWORD position) { m_pPos = position; }
    DWORD End() const { return m_pEnd; }

    // The line of the code that was read last when standing at a position; 0 outside of the stream.
    DWORD LineAt(DWORD position) const;
    DWORD CurrentLine() const override { return LineAt(m_pPos); }

  private:
    void ReportMissing(BYTE code, DWORD position);
    DWORD NoteText(BYTE code, DWORD position);
    void NoteBracket(DWORD position);

    CNameTable& m_names;
    CScriptReport& m_report;
    BYTE* m_pRegion = nullptr;
    DWORD m_pStart = 0;
    DWORD m_pEnd = 0;
    DWORD m_pPos = 0;
    // By position: of an inline text's first byte; of an opening bracket, what is behind it.
    std::vector<InlineText> m_marks;
    std::vector<DWORD> m_openBraces; // while Prepare looks for where they close
    std::vector<DWORD> m_openParentheses;
};
