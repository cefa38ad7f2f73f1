// CTokenizer: turns a script file into the token stream.
//
// Lives while a script is loaded, on the loader's stack. Brackets every block with "{" and "}" and
// checks that what is opened is closed. The first thing that is wrong is reported and ends it; no
// file, whatever is in it, makes it write outside of the region or go on for ever.
#pragma once

#include "platform/Types.h"
#include "script/NestStack.h"
#include "script/ScriptArea.h"
#include "script/ScriptFile.h"
#include "script/ScriptReport.h"

#include <array>
#include <string_view>

class CTokenizer final : public ILineSource {
  public:
    // Reads the file through the front of the region and writes the stream behind it. While this
    // object lives it tells the report the current line.
    CTokenizer(HANDLE file, CScriptArea& area, CScriptReport& report);
    CTokenizer(const CTokenizer&) = delete;
    CTokenizer& operator=(const CTokenizer&) = delete;
    ~CTokenizer() { m_report.SetLineSource(nullptr); }

    // FALSE when it stopped on an error, which has been reported.
    bool Tokenize();

    // Where the finished stream ends; an even position.
    DWORD End() const { return m_pPos; }

    // Whether it stopped at a line feed that follows no carriage return.
    bool HasUnixLineEnds() const { return m_bUnixLineEnds; }

    DWORD CurrentLine() const override { return m_nLine; }

  private:
    bool ReadToken(BYTE& code);
    bool ReadWord(bool& isLiteral);
    bool ReadPlainWord(BYTE first);
    bool ReadLiteral();
    bool ReadEscape();
    bool ReadHexDigit(BYTE& value);
    BYTE ClassifyWord(bool isLiteral);
    BYTE ClassifyDelimiter(BYTE character);
    BYTE ClassifyNumber(std::string_view word);
    bool ApplyBlockRule(BYTE code);
    bool CheckNesting();
    bool FinishLine();
    bool Put(BYTE character);
    std::string_view Word() const;
    bool ReadSkippingComment(BYTE& character);
    BYTE ReadNeeded();
    bool Fail(DWORD error, std::string_view detail = {});
    bool FailAtEnd();

    CScriptArea& m_area;
    CScriptReport& m_report;
    CScriptFile m_file;
    DWORD m_nLine = 1;
    DWORD m_pPos = CScriptArea::kStart; // behind the code byte of the token being read
    DWORD m_pWordEnd = 0;               // behind the NUL of its text
    std::array<CNestStack, NEST_KINDS> m_stacks;
    bool m_bBracePending = false;
    bool m_bUnixLineEnds = false;
};
