// CConsoleScreen: the console as a screen with a cursor, colours and erasing.
//
// Declares the whole set of operations that an interpreter of control sequences drives; those that
// the console has no counterpart for do nothing here and are there to be overridden. Rows and
// columns count from 0. Owned by the session, used from its thread; the modem is not owned and
// outlives the screen. Nothing here touches a console that has been given back.
#pragma once

#include "terminal/Console.h"

class CVModem;

inline constexpr WORD ATTR_BOLD = 0x01;
inline constexpr WORD ATTR_UNDERLINE = 0x02;
inline constexpr WORD ATTR_BLINK = 0x04;
inline constexpr WORD ATTR_REVERSE = 0x08;
inline constexpr WORD ATTR_CONCEALED = 0x40;

class CConsoleScreen : public CConsole {
  public:
    // Takes the console over for a device. The result is Init's.
    virtual BOOL Attach(CVModem* modem);

    virtual void InsertChar();
    virtual void CursorUp(int count);
    virtual void CursorDown(int count);

    // Move the cursor within its row, at most to the last and to the first column.
    virtual void CursorForward(int count);
    virtual void CursorBack(int count);

    // Places the cursor, at most in the last row and column; a negative one leaves it where it is.
    virtual void SetCursorPosition(int row, int column);

    virtual void EraseToScreenStart();

    // Blanks the whole window; the cursor stays.
    virtual void ClearScreen();

    // Blanks from the cursor to the last column but one: the last column keeps its character.
    virtual void EraseToLineEnd();

    virtual void EraseToScreenEnd();
    virtual void EraseToLineStart();
    virtual void DeleteLine();
    virtual void InsertLine();
    virtual void DeleteChar();
    virtual void ScrollUp(int count);
    virtual void ScrollDown(int count);
    virtual void SetScrollRegion(int top, int left, int bottom, int right);

    // The colours (0 to 15) of all that is written or blanked from now on.
    virtual void SetColors(int foreground, int background);

    // The ATTR_ bits, kept for the interpreter.
    virtual void SetAttributeFlags(WORD flags);
    virtual WORD GetAttributeFlags();

    virtual void PutChar(BYTE character) { WriteText(&character, 1); }

    // The cursor; 0, 0 when the console cannot tell.
    void GetCursor(int& column, int& row);

    // Writes count blanks from a cell on, in the present attribute; the cursor stays.
    void FillCells(COORD start, DWORD count);

    // A line feed, through PutChar.
    void NewLine();

  protected:
    ~CConsoleScreen() = default;

    BOOL m_bInEscape = FALSE; // an escape sequence is being collected
    int m_nRows = 25;
    int m_nColumns = 80;
    CVModem* m_pModem = nullptr; // gets key sequences and status replies
    int m_nDefaultForeground = 7;
    int m_nDefaultBackground = 0;
    int m_nTopRow = 0;
    BYTE m_byAttribute = 0x07; // background * 16 + foreground
    WORD m_wAttributeFlags = 0;
    WORD m_wExactColors = 0; // which of the attribute's colours are meant as they are

  private:
    BOOL ReadScreen(CONSOLE_SCREEN_BUFFER_INFO& info);
    void PlaceCursor(std::int64_t row, std::int64_t column);
};
