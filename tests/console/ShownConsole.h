// The console's output, taken over and cleared, on a terminal: what is written is what a user sees.
#pragma once

#include "console/ConsoleOutput.h"
#include "tests/endtoend/Terminal.h"

#include <gtest/gtest.h>

class CShownConsole : public CTerminal {
  public:
    explicit CShownConsole(int columns = 20, int rows = 5) {
        termios raw = GetLine().GetSettings();
        cfmakeraw(&raw);
        GetLine().ApplySettings(raw);
        Resize(rows, columns);
        output.Use(GetLine().GetSlave(), "xterm-256color");
        output.Begin();
        Fill(0, 0, columns * rows, 0x07);
        output.SetPosition({0, 0});
        Show();
    }

    bool Write(std::string_view text) {
        return output.Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    // Fills cells and gives them the attribute, as the program does it.
    bool Fill(int column, int row, int count, std::uint8_t attribute, char character = ' ') {
        const COORD start = {static_cast<SHORT>(column), static_cast<SHORT>(row)};
        const auto length = static_cast<DWORD>(count);
        return output.Fill(character, length, start) >= 0 &&
               output.ColourFill(attribute, length, start);
    }
    // Lets everything out and draws it, up to a mark that the console never sends.
    void Show() {
        GetReceived().clear();
        output.LetOut();
        for (bool isMarked = false; !GetReceived().ends_with('\0');) {
            if (output.IsStalled())
                output.ContinueAfterStall();
            else if (!isMarked)
                isMarked = write(GetLine().GetSlave(), "", 1) == 1;
            pollfd arrival = {GetDescriptor(), POLLIN, 0};
            ASSERT_EQ(poll(&arrival, 1, 45'000), 1) << "nothing comes";
            OnReady(POLLIN);
        }
    }
    // Where the console has the cursor.
    COORD GetCursor() {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        output.GetInfo(info);
        return info.dwCursorPosition;
    }
    std::string Row(int row) { return GetScreen().GetRow(row); }

    platform::CConsoleOutput output;
};
