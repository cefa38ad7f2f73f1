// The console's output, taken over, on a terminal that libvterm draws: it tells what the user sees.
#pragma once

#include "console/ConsoleOutput.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/Screen.h"

class CShownConsole {
  public:
    explicit CShownConsole(int columns = 20, int rows = 5);

    // Clears the window as the program does at its start.
    void Clear();
    // Writes text in one call.
    bool Write(std::string_view text);
    // Fills cells and gives them the attribute, as the program does it.
    bool Fill(int column, int row, int count, std::uint8_t attribute, char character = ' ');
    COORD GetCursor();

    // Lets everything out that the output has gathered, and draws it.
    void Show();
    // Draws what has been written to the terminal until now.
    void Catch();
    void Resize(int columns, int rows);
    // The text of a row without the blanks at its end.
    std::string Row(int row) const { return screen.GetRow(row); }

    CPseudoTerminal line;
    CScreen screen;
    platform::CConsoleOutput output;

  private:
    // Draws some of what has arrived, up to a mark; true when that was there, or nothing came.
    bool DrawSome();
};

bool Write(platform::CConsoleOutput& output, std::string_view text);
