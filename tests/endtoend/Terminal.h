// The user's terminal: what it receives is drawn on a screen, what it sends are keys.
#pragma once

#include "tests/endtoend/Device.h"
#include "tests/support/Screen.h"

class CTerminal : public CDevice {
  public:
    static constexpr int kRows = 24;
    static constexpr int kColumns = 80;

    CTerminal();

    void Type(std::string_view bytes) { Send(bytes); }
    // While it is off, the terminal takes no output, as one does whose user pressed Ctrl+S.
    void SetReading(bool reading) { SetReadLimit(reading ? kNoLimit : 0); }
    void Resize(int rows, int columns);
    // The user closes the window.
    void CloseWindow() { Vanish(); }

    CScreen& GetScreen() { return m_screen; }
    // All bytes that were written to the terminal.
    const std::string& GetOutput() { return GetReceived(); }

  private:
    void OnReceived(const std::string& bytes) override { m_screen.Feed(bytes); }

    CScreen m_screen;
};
