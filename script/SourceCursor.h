// CSourceCursor: the place in a script's tokens where a check is.
//
// Lives for one check, on one thread. At the end it stays on the TOKEN_EOF.
#pragma once

#include "script/SourceTokens.h"
#include "script/TokenCodes.h"

#include <vector>

class CSourceCursor {
  public:
    explicit CSourceCursor(const std::vector<SourceToken>& tokens) : m_tokens(tokens) {}

    // The next token that is no line end, not consumed; line ends before it are.
    const SourceToken& Peek() {
        while (m_tokens[m_nPosition].code == TOKEN_EOL)
            ++m_nPosition;
        return m_tokens[m_nPosition];
    }
    // The same, consumed.
    const SourceToken& Take() {
        const SourceToken& token = Peek();
        if (token.code != TOKEN_EOF)
            ++m_nPosition;
        return token;
    }
    bool Accept(BYTE code) {
        const bool isNext = Peek().code == code;
        m_nPosition += isNext && code != TOKEN_EOF ? 1 : 0;
        return isNext;
    }
    // Consumes a line end that follows directly.
    bool AcceptEol() {
        const bool isNext = m_tokens[m_nPosition].code == TOKEN_EOL;
        m_nPosition += isNext ? 1 : 0;
        return isNext;
    }
    // Consumes the rest of the line that the last token was in, but no bracket of a block.
    void SkipLine() {
        if (m_nPosition > 0 && m_tokens[m_nPosition - 1].code == TOKEN_EOL)
            return;
        for (BYTE code = Code();
             code != TOKEN_EOL && code != '{' && code != '}' && code != TOKEN_EOF; code = Code())
            ++m_nPosition;
    }
    // Consumes all up to a code, which stays, or to the end.
    void SkipTo(BYTE code) {
        while (Code() != code && Code() != TOKEN_EOF)
            ++m_nPosition;
    }
    // The line of the token that was consumed last.
    DWORD Line() const { return m_tokens[m_nPosition == 0 ? 0 : m_nPosition - 1].line; }

    std::size_t Position() const { return m_nPosition; }
    void Seek(std::size_t position) { m_nPosition = position; }

  private:
    BYTE Code() const { return m_tokens[m_nPosition].code; }

    const std::vector<SourceToken>& m_tokens;
    std::size_t m_nPosition = 0;
};
