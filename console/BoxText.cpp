// A line is filled character by character. It remembers where it could end, behind its last word,
// and where the word behind that begins: when a character does not fit, that word moves on.
#include "console/BoxText.h"

#include "console/ConsoleGlyphs.h"

#include <limits>
#include <utility>

namespace platform {
namespace {

constexpr int kTabColumns = 8;

// Fills lines with characters; knows nothing of what they mean, but for the blank.
class CLineFiller {
  public:
    CLineFiller(int columns, std::size_t bytes) : m_nMostColumns(columns), m_nMostBytes(bytes) {}

    void Put(const Glyph& glyph);
    void PutTab();
    // Ends a line of the text.
    void EndLine();
    std::vector<BoxLine> TakeLines() { return std::move(m_lines); }

  private:
    bool Fits(std::size_t bytes, int width) const {
        return m_line.columns + width <= m_nMostColumns &&
               m_line.text.size() + bytes <= m_nMostBytes;
    }
    void PutBlank();
    void Wrap();
    void FinishLine();
    void NoteWordEnd();

    const int m_nMostColumns;
    const std::size_t m_nMostBytes;
    std::vector<BoxLine> m_lines;
    BoxLine m_line;
    // Where the line can end, behind a word that blanks follow (0: nowhere), and where the word
    // behind these blanks begins.
    std::size_t m_nEnd = 0;
    int m_nEndColumns = 0;
    std::size_t m_nWord = 0;
    bool m_bInWord = false;
    bool m_bWrapped = false; // blanks at the start of this line only separated it from the last one
};

void CLineFiller::Put(const Glyph& glyph) {
    if (glyph.text == " ")
        return PutBlank();
    if (glyph.columns > m_nMostColumns)
        return Put(kReplacement);
    if (glyph.text.empty())
        return;
    while (!Fits(glyph.text.size(), glyph.columns))
        Wrap();
    if (glyph.columns == 0 && m_line.text.empty()) { // it joins a character before it
        m_line = {" ", 1};
    }
    m_line.text += glyph.text;
    m_line.columns += glyph.columns;
    m_bInWord = true;
    m_bWrapped = false;
}

void CLineFiller::PutBlank() {
    NoteWordEnd();
    if (!Fits(1, 1))
        Wrap();
    if (m_bWrapped)
        return;
    m_line.text += ' ';
    ++m_line.columns;
    m_nWord = m_line.text.size();
}

void CLineFiller::PutTab() {
    const int next = m_line.columns / kTabColumns * kTabColumns + kTabColumns;
    for (int blanks = next - m_line.columns; blanks > 0; --blanks)
        PutBlank();
}

void CLineFiller::NoteWordEnd() {
    if (!m_bInWord)
        return;
    m_bInWord = false;
    m_nEnd = m_line.text.size();
    m_nEndColumns = m_line.columns;
}

// The last word goes to the next line; a line of one word is cut.
void CLineFiller::Wrap() {
    BoxLine next;
    if (m_nEnd != 0) {
        if (m_bInWord) {
            next.text = m_line.text.substr(m_nWord);
            next.columns = m_line.columns - m_nEndColumns - static_cast<int>(m_nWord - m_nEnd);
        }
        m_line.text.resize(m_nEnd);
        m_line.columns = m_nEndColumns;
    }
    FinishLine();
    m_line = std::move(next);
    m_bInWord = !m_line.text.empty();
    m_bWrapped = !m_bInWord;
}

void CLineFiller::EndLine() {
    if (m_bWrapped) // only blanks were left of it
        m_bWrapped = false;
    else
        FinishLine();
}

void CLineFiller::FinishLine() {
    m_lines.push_back(std::move(m_line));
    m_line = {};
    m_nEnd = m_nWord = 0;
    m_nEndColumns = 0;
    m_bInWord = false;
    m_bWrapped = false;
}

void PutCharacter(CLineFiller& lines, const CUtf8Decoder& character) {
    if (character.Code() == '\n')
        lines.EndLine();
    else if (character.Code() == '\t')
        lines.PutTab();
    else
        lines.Put(GlyphOf(character, CCharacterSet::OfLocale()));
}

std::string WithoutReturns(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!text.substr(at).starts_with("\r\n"))
            result += text[at];
    }
    return result;
}

} // namespace

std::vector<BoxLine> WrapText(std::string_view text, int columns, std::size_t bytes) {
    CLineFiller lines(columns, bytes);
    ReadUtf8(
        WithoutReturns(text),
        [&](const CUtf8Decoder& character) { PutCharacter(lines, character); },
        [&](std::uint8_t byte) { lines.Put(GlyphOf(byte)); });
    lines.EndLine();
    return lines.TakeLines();
}

std::vector<BoxLine> LinesOf(std::string_view text) {
    return WrapText(text, std::numeric_limits<int>::max(), std::numeric_limits<std::size_t>::max());
}

} // namespace platform
