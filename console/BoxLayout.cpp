// The rows are given out from the middle: first what the text needs, then, as far as the window has
// room, the button, the caption's bar and the blank rows; what is left over is halved above and
// below. A text that is higher than its rows is shown by pages, and a note takes the hint's place.
#include "console/BoxLayout.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace platform {
namespace {

constexpr std::string_view kButton = "[ OK ]";
constexpr int kButtonColumns = static_cast<int>(kButton.size());
constexpr int kButtonWord = 2; // where its word begins
constexpr std::string_view kHints[] = {"Enter, Space or Esc", "Enter or Esc"};

constexpr int kLeastColumnsWithPadding = 8;
constexpr int kLeastColumnsWithIndent = 12;
constexpr int kLeastRowsWithCaptionBar = 4;
constexpr int kLeastRowsWithButton = 2;
constexpr int kIndent = 2;
constexpr int kUsualColumns = 30; // a box is not narrower where there is room

// With blank rows and both bars: rows besides the text, and from how many rows of the window on a
// text that has to be scrolled gets them, too.
constexpr int kRoomyRows = 5;
constexpr int kRoomyWindow = 12;

// What is shown of a text that has to be scrolled, the most telling first.
constexpr const char* kNotes[] = {
    "Lines %d-%d of %d: Up, Down, PageUp, PageDown",
    "%d-%d of %d, Up/Down",
    "%d-%d/%d Up/Dn",
    "%d-%d/%d",
};

std::string HintFor(int columns) {
    for (const std::string_view hint : kHints) {
        if (hint.size() <= static_cast<std::size_t>(columns))
            return std::string(hint);
    }
    return "";
}

int WidestOf(const std::vector<BoxLine>& lines) {
    const auto widest =
        std::max_element(lines.begin(), lines.end(), [](const BoxLine& left, const BoxLine& right) {
            return left.columns < right.columns;
        });
    return widest->columns;
}

} // namespace

CBoxLayout::CBoxLayout(const BoxContent& content, int columns, int rows) {
    m_nPadding = columns >= kLeastColumnsWithPadding ? 1 : 0;
    FillBody(content, std::min(kMostColumns, columns - 2 * m_nPadding), rows);
    Place(columns, rows);
}

void CBoxLayout::FillBody(const BoxContent& content, int columns, int rows) {
    const bool indents = content.sign != 0 && columns >= kLeastColumnsWithIndent;
    m_nIndent = indents ? kIndent : 0;
    m_chSign = indents ? content.sign : '\0';
    if (content.sign != 0 && !indents)
        m_body.push_back({std::string(1, content.sign), 1});

    m_bCaptionBar = rows >= kLeastRowsWithCaptionBar;
    std::vector<BoxLine> caption = WrapText(content.caption, columns - m_nIndent);
    if (m_bCaptionBar && caption.size() == 1)
        m_caption = std::move(caption[0]);
    else
        std::move(caption.begin(), caption.end(), std::back_inserter(m_body));
    std::vector<BoxLine> text = WrapText(content.text, columns - m_nIndent);
    std::move(text.begin(), text.end(), std::back_inserter(m_body));
    m_nInner = columns;
}

void CBoxLayout::Place(int columns, int rows) {
    const int lines = static_cast<int>(m_body.size());
    const bool hasButton = rows >= kLeastRowsWithButton;
    m_bRoomy = lines + kRoomyRows <= rows || rows >= kRoomyWindow;
    const int others = m_bRoomy ? kRoomyRows : (m_bCaptionBar ? 1 : 0) + (hasButton ? 1 : 0);
    m_nPage = std::min(lines, rows - others);
    if (LastTop() == 0) {
        const int widest = std::max(WidestOf(m_body) + m_nIndent, m_caption.columns);
        m_nInner = std::min(m_nInner, std::max(widest, kUsualColumns));
    }
    m_nLeft = (columns - m_nInner) / 2 - m_nPadding;
    m_nFirstRow = (rows - others - m_nPage) / 2;
    m_nTextRow = m_nFirstRow + (m_bCaptionBar ? 1 : 0) + (m_bRoomy ? 1 : 0);
    m_nButtonRow = hasButton ? m_nTextRow + m_nPage + (m_bRoomy ? 1 : 0) : m_nTextRow;
    // Beside the button there is a note when there is no bar for it.
    const bool centred = m_bRoomy || LastTop() == 0;
    const int before = centred ? std::max(0, (m_nInner - kButtonColumns) / 2) : 0;
    m_nButtonColumn = m_nLeft + m_nPadding + before + kButtonWord;
    m_nButtonColumn = std::min(m_nButtonColumn, columns - 1);
}

std::vector<BoxRow> CBoxLayout::Rows(int top) const {
    std::vector<BoxRow> rows;
    const int column = m_nLeft + m_nPadding;
    if (m_bCaptionBar)
        rows.push_back(Bar(m_nFirstRow, m_caption.text, m_caption.columns));
    for (int line = 0; line < m_nPage; ++line)
        rows.push_back({m_nTextRow + line, column, false, LineText(top + line)});
    if (m_nButtonRow == m_nTextRow)
        return rows;

    const int room = m_nInner - kButtonColumns - 1;
    const std::string note = LastTop() == 0 ? "" : Note(top, m_bRoomy ? m_nInner : room);
    const int buttonColumn = std::max(column, m_nButtonColumn - kButtonWord);
    std::string button(
        kButton.substr(0, static_cast<std::size_t>(std::min(m_nInner, kButtonColumns))));
    if (!m_bRoomy && !note.empty())
        button += ' ' + note;
    rows.push_back({m_nButtonRow, buttonColumn, false, std::move(button)});
    if (m_bRoomy) {
        const std::string said = LastTop() == 0 ? HintFor(m_nInner) : note;
        rows.push_back(Bar(m_nButtonRow + 1, said, static_cast<int>(said.size())));
    }
    return rows;
}

BoxRow CBoxLayout::Bar(int row, const std::string& text, int columns) const {
    const auto before = static_cast<std::size_t>(m_nPadding);
    const auto after = static_cast<std::size_t>(m_nInner + m_nPadding - columns);
    return {row, m_nLeft, true, std::string(before, ' ') + text + std::string(after, ' ')};
}

std::string CBoxLayout::LineText(int line) const {
    std::string indent(static_cast<std::size_t>(m_nIndent), ' ');
    if (line == 0 && m_chSign != 0)
        indent[0] = m_chSign;
    return indent + m_body[static_cast<std::size_t>(line)].text;
}

std::string CBoxLayout::Note(int top, int columns) const {
    for (const char* const format : kNotes) {
        char note[80];
        const int length = std::snprintf(note, sizeof note, format, top + 1, top + m_nPage,
                                         static_cast<int>(m_body.size()));
        if (length <= columns)
            return note;
    }
    return "";
}

} // namespace platform
