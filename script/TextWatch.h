// CTextWatch: recognises a text in bytes that come one by one, whatever came before it.
//
// Lives for one wait, on one thread. Every byte costs about the same, however long the text is and
// however often its beginning is seen.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class CTextWatch {
  public:
    explicit CTextWatch(std::string_view text);

    // Takes the next byte; whether the latest bytes are now the text. An empty text is found in
    // anything.
    bool Take(char byte);

  private:
    void Advance(char byte);

    std::string m_strText;
    // Of each beginning of the text: the length of the longest shorter beginning that it ends with.
    std::vector<std::size_t> m_borders;
    std::size_t m_nMatched = 0; // how much of the text the latest bytes are
};
