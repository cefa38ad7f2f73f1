// CSourceTokens: a script's source as tokens with their lines, for a check.
//
// Lives for one check, on one thread; the source must outlive it. It divides the text as the
// tokenizer does, and brackets blocks in the same way, but goes on behind what is wrong.
#pragma once

#include "platform/Types.h"
#include "script/CheckFindings.h"
#include "script/NestStack.h"

#include <array>
#include <string_view>
#include <vector>

struct SourceToken {
    BYTE code;
    DWORD line;
    std::string_view text; // as it stands in the source; empty for inserted brackets
    std::int32_t number;   // the value of a TOKEN_NUMBER
};

class CSourceTokens {
  public:
    CSourceTokens(std::string_view source, CCheckFindings& findings);

    // Divides the whole source. False when blocks are opened or closed that do not belong together:
    // then the tokens tell nothing about the statements.
    bool Read();

    // The tokens; a TOKEN_EOF is the last one.
    const std::vector<SourceToken>& Get() const { return m_tokens; }

  private:
    bool ReadOne();
    BYTE Next();
    BYTE NextSkippingComment();
    void ReadWord(BYTE first, std::size_t start);
    void AddWord(std::string_view word);
    void AddDelimiter(std::string_view word);
    void ReadLiteral();
    bool ReadEscape();
    bool ReadHexDigit(DWORD& value);
    void EndLine();
    void Add(BYTE code, std::string_view text, std::int32_t number = 0);
    void ApplyBlocks(BYTE code);
    void CheckNesting();
    void FailAtEnd();

    std::string_view m_source;
    CCheckFindings& m_findings;
    std::vector<SourceToken> m_tokens;
    std::size_t m_nPosition = 0;
    DWORD m_nLine = 1;
    std::array<CNestStack, NEST_KINDS> m_stacks;
    bool m_bBracePending = false;
    bool m_bNested = true;
    bool m_bUnixLineEnds = false;
};
