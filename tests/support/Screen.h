// What the user sees: a screen of libvterm, fed with the bytes that the program writes.
#pragma once

#include <string>
#include <string_view>
#include <vector>
#include <vterm.h>

class CScreen {
  public:
    CScreen(int rows, int columns);
    CScreen(const CScreen&) = delete;
    CScreen& operator=(const CScreen&) = delete;
    ~CScreen() { vterm_free(m_pTerminal); }

    void Feed(std::string_view bytes);
    void Resize(int rows, int columns) { vterm_set_size(m_pTerminal, rows, columns); }

    // One row, and all rows, as UTF-8 without the blanks at the end.
    std::string GetRow(int row) const;
    std::string GetText() const;
    // The row that a text begins in; -1 when no row shows it.
    int FindRow(std::string_view text) const;

    VTermPos GetCursor() const;
    VTermScreenCell GetCell(int row, int column) const;

    const std::vector<std::string>& GetScrollback() const { return m_scrollback; }
    const std::string& GetTitle() const { return m_title; }
    int GetBells() const { return m_nBells; }
    bool IsCursorVisible() const { return m_bCursorVisible; }

    // What the terminal would have answered: the program asked it something.
    const std::string& GetReplies() const { return m_replies; }
    // Control functions that a program which only draws has no use for, a few words each: other
    // screens, mouse modes, and what libvterm does not know. The title stack's "CSI t" is among
    // them.
    const std::vector<std::string>& GetOddities() const { return m_oddities; }

  private:
    VTermPos GetSize() const;
    void SetProperty(VTermProp property, const VTermValue& value);

    VTerm* m_pTerminal;
    VTermScreen* m_pScreen;
    std::vector<std::string> m_scrollback;
    std::vector<std::string> m_oddities;
    std::string m_replies;
    // libvterm draws a character that comes in two pieces as two if text stands before it.
    std::string m_unfed;
    std::string m_title;
    int m_nBells = 0;
    bool m_bCursorVisible = true;

    static const VTermScreenCallbacks kCallbacks;
};

// A colour of the 16 by its ANSI number; -1 for the terminal's own default, -2 for any other.
int IndexOf(const VTermColor& colour);
