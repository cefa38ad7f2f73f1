#include "console/BoxText.h"

#include "console/ConsoleGlyphs.h"
#include "platform/terminal/Characters.h"
#include "platform/terminal/Utf8.h"

#include <limits>
#include <utility>

namespace platform {
namespace {

constexpr int TAB_COLUMNS = 8;

// Fills lines with characters; knows nothing of what they mean, but for the blank.
class CLineFiller {
  public:
    CLineFiller(int columns, std::size_t bytes) : m_nMostColumns(columns), m_nMostBytes(bytes) {}

    void Put(std::string_view character, int width);
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

void CLineFiller::Put(std::string_view character, int width) {
    if (character == " ")
        return PutBlank();
    if (width > m_nMostColumns)
        return Put(REPLACEMENT, 1);
    while (!Fits(character.size(), width))
        Wrap();
    if (width == 0 && m_line.text.empty()) { // it joins a character before it
        m_line = {" ", 1};
    }
    m_line.text += character;
    m_line.columns += width;
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
    const int next = m_line.columns / TAB_COLUMNS * TAB_COLUMNS + TAB_COLUMNS;
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

void PutAscii(CLineFiller& lines, std::uint8_t byte) {
    if (byte == '\n')
        lines.EndLine();
    else if (byte == '\t')
        lines.PutTab();
    else
        lines.Put(PictureOf(byte), 1);
}

void PutCharacter(CLineFiller& lines, const CUtf8Decoder& decoder) {
    if (decoder.Code() < 0x80)
        return PutAscii(lines, static_cast<std::uint8_t>(decoder.Code()));
    switch (KindOf(decoder, CCharacterSet::OfLocale())) {
    case CharacterKind::NARROW:
        return lines.Put(decoder.Bytes(), 1);
    case CharacterKind::WIDE:
        return lines.Put(decoder.Bytes(), 2);
    case CharacterKind::COMBINING:
        return lines.Put(decoder.Bytes(), 0);
    case CharacterKind::CONTROL:
        return lines.Put(PictureOf(static_cast<std::uint8_t>(decoder.Code())), 1);
    case CharacterKind::REPLACED:
        return lines.Put(REPLACEMENT, 1);
    case CharacterKind::LACKING:
        return lines.Put(LACKING, 1);
    case CharacterKind::OMITTED:
        return;
    }
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
        [&](std::uint8_t byte) { lines.Put(PictureOf(byte), 1); });
    lines.EndLine();
    return lines.TakeLines();
}

std::vector<BoxLine> LinesOf(std::string_view text) {
    return WrapText(text, std::numeric_limits<int>::max(), std::numeric_limits<std::size_t>::max());
}

} // namespace platform
