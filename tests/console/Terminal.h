// A user's terminal for the tests: a pseudo-terminal whose other end is drawn by libvterm, which
// thus tells what the user sees.
#pragma once

#include "platform/ConsoleOutput.h"

#include <string>
#include <vector>

#include <vterm.h>

class CTerminal {
  public:
    CTerminal(int columns, int rows);
    ~CTerminal();
    CTerminal(const CTerminal&) = delete;
    CTerminal& operator=(const CTerminal&) = delete;

    int Slave() const { return m_slave.Get(); }
    int Master() const { return m_master.Get(); }

    // Lets everything out that the output has gathered, and draws it.
    void Show(platform::CConsoleOutput& output);
    // Draws what has been written to the slave until now.
    void Catch();
    void Resize(int columns, int rows);

    int CursorColumn() const { return Cursor().col; }
    int CursorRow() const { return Cursor().row; }
    VTermScreenCell Cell(int column, int row) const;
    // The text of a row without the blanks at its end.
    std::string Row(int row) const;
    // Every byte that has arrived.
    const std::string& Raw() const { return m_raw; }
    void ForgetRaw() { m_raw.clear(); }
    // The rows that have scrolled out at the top.
    const std::vector<std::string>& Scrollback() const { return m_scrollback; }
    const std::string& Title() const { return m_title; }
    int Bells() const { return m_bells; }

  private:
    VTermPos Cursor() const;
    void Draw(const char* bytes, std::size_t count);
    static int PushLine(int columns, const VTermScreenCell* cells, void* user);
    static int SetProperty(VTermProp property, VTermValue* value, void* user);
    static int Ring(void* user);

    platform::CDescriptor m_master;
    platform::CDescriptor m_slave;
    VTerm* m_terminal;
    VTermScreen* m_screen;
    std::string m_raw;
    std::vector<std::string> m_scrollback;
    std::string m_title;
    int m_bells = 0;
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
