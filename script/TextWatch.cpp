#include "script/TextWatch.h"

CTextWatch::CTextWatch(std::string_view text) : m_strText(text), m_borders(text.size()) {
    for (std::size_t index = 1; index < m_strText.size(); ++index) {
        Advance(m_strText[index]);
        m_borders[index] = m_nMatched;
    }
    m_nMatched = 0;
}

bool CTextWatch::Take(char byte) {
    if (m_strText.empty())
        return true;
    if (m_nMatched == m_strText.size())
        m_nMatched = m_borders[m_nMatched - 1];
    Advance(byte);
    return m_nMatched == m_strText.size();
}

void CTextWatch::Advance(char byte) {
    while (m_nMatched != 0 && m_strText[m_nMatched] != byte)
        m_nMatched = m_borders[m_nMatched - 1];
    if (m_strText[m_nMatched] == byte)
        ++m_nMatched;
}
