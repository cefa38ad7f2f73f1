// A message box in a window of a given size: which text stands where, and how far it can be
// scrolled. The rows hold text alone, so that they can be copied and read aloud; the bars above and
// below make the box.
//
// In a low or narrow window the box gives up its blank rows, its bars and its indentation, in this
// order; a caption without a bar of its own stands before the text. Pure; used by one thread.
#pragma once

#include "console/BoxText.h"

namespace platform {

// What a message box says; any bytes.
struct BoxContent {
    std::string caption;
    std::string text;
    char sign = 0; // before the text; 0: none
};

// A row of the window and what stands in it from a column on, counted from 0.
struct BoxRow {
    int row = 0;
    int column = 0;
    bool reversed = false;
    std::string text; // at most CBoxLayout::kMostRowBytes
};

class CBoxLayout {
  public:
    // What is comfortable to read.
    static constexpr int kMostColumns = 76;
    // A full line, its indentation and the blanks that make a bar of it.
    static constexpr std::size_t kMostRowBytes = kMostBoxLineBytes + kMostColumns + 8;

    // A window of at least one column and one row.
    CBoxLayout(const BoxContent& content, int columns, int rows);

    // The lines of the text that are shown at a time, and the number of the first one when the last
    // one is shown (0: there is nothing to scroll).
    int PageLines() const { return m_nPage; }
    int LastTop() const { return static_cast<int>(m_body.size()) - m_nPage; }

    // Everything that is shown when the text begins with a line.
    std::vector<BoxRow> Rows(int top) const;

    // Where the word on the button begins.
    int ButtonColumn() const { return m_nButtonColumn; }
    int ButtonRow() const { return m_nButtonRow; }

  private:
    void FillBody(const BoxContent& content, int columns, int rows);
    void Place(int columns, int rows);
    BoxRow Bar(int row, const std::string& text, int columns) const;
    std::string LineText(int line) const;
    std::string Note(int top, int columns) const;

    std::vector<BoxLine> m_body;
    BoxLine m_caption; // empty when it is part of the body
    char m_chSign = 0; // before the first line of the body
    bool m_bCaptionBar = false;
    bool m_bRoomy = false;
    int m_nPadding = 0; // between the ends of a bar and its text
    int m_nInner = 0;   // columns of the text
    int m_nIndent = 0;  // of the lines below the sign
    int m_nPage = 0;
    int m_nLeft = 0;
    int m_nFirstRow = 0;
    int m_nTextRow = 0;
    int m_nButtonColumn = 0;
    int m_nButtonRow = 0;
};

} // namespace platform
