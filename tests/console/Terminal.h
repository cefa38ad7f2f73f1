// A user's terminal for the tests: a pseudo-terminal whose other end is drawn by libvterm, which
// thus tells what the user sees.
#pragma once

#include "platform/ConsoleOutput.h"
#include "tests/support/Pipe.h"
#include "tests/support/Screen.h"

class CTerminal {
  public:
    CTerminal(int columns, int rows);

    int Slave() const { return m_slave.Get(); }
    int Master() const { return m_master.Get(); }

    // Lets everything out that the output has gathered, and draws it.
    void Show(platform::CConsoleOutput& output);
    // Draws what has been written to the slave until now.
    void Catch();
    void Resize(int columns, int rows);

    int CursorColumn() const { return m_screen.GetCursor().col; }
    int CursorRow() const { return m_screen.GetCursor().row; }
    VTermScreenCell Cell(int column, int row) const { return m_screen.GetCell(row, column); }
    // The text of a row without the blanks at its end.
    std::string Row(int row) const { return m_screen.GetRow(row); }
    // Every byte that has arrived.
    const std::string& Raw() const { return m_raw; }
    void ForgetRaw() { m_raw.clear(); }
    // The rows that have scrolled out at the top.
    const std::vector<std::string>& Scrollback() const { return m_screen.GetScrollback(); }
    const std::string& Title() const { return m_screen.GetTitle(); }
    int Bells() const { return m_screen.GetBells(); }

  private:
    // Draws some of what has arrived, up to a mark; true when it was there, or nothing could be
    // read.
    bool DrawSome();

    CDescriptor m_master;
    CDescriptor m_slave;
    CScreen m_screen;
    std::string m_raw;
};

// Writes text in one call.
bool Write(platform::CConsoleOutput& output, std::string_view text);
// Fills cells and gives them the attribute, as the program does it.
bool FillCells(platform::CConsoleOutput& output, int column, int row, int count,
               std::uint8_t attribute, char character = ' ');
COORD CursorOf(platform::CConsoleOutput& output);

// An output on a terminal of its own, taken over.
struct Console {
    explicit Console(int columns = 20, int rows = 5, const char* type = "xterm-256color");
    void Show() { terminal.Show(output); }
    // Clears the window as the program does at its start.
    void Clear();

    CTerminal terminal;
    std::unique_ptr<platform::CConsoleOutput> held;
    platform::CConsoleOutput& output;
};
