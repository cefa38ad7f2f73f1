// The user's terminal: a pseudo-terminal whose output is drawn on a screen, and a keyboard.
#pragma once

#include "tests/endtoend/PseudoTerminal.h"
#include "tests/endtoend/Pump.h"
#include "tests/endtoend/Screen.h"

class CTerminal : public IPollable {
  public:
    static constexpr int kRows = 24;
    static constexpr int kColumns = 80;

    CTerminal();

    void Type(std::string_view bytes) { m_typed.Append(bytes); }

    // While it is off, the terminal takes no output, as one does whose user pressed Ctrl+S.
    void SetReading(bool reading) { m_bReading = reading; }
    void Resize(int rows, int columns);
    // The user closes the window.
    void CloseWindow() { m_line.CloseMaster(); }

    CPseudoTerminal& GetLine() { return m_line; }
    CScreen& GetScreen() { return m_screen; }
    // All bytes that were written to the terminal.
    const std::string& GetOutput() const { return m_output; }

    int GetDescriptor() const override { return m_line.GetMaster(); }
    short GetEvents() const override;
    void OnReady(short events) override;

  private:
    CPseudoTerminal m_line;
    CScreen m_screen;
    CByteQueue m_typed;
    std::string m_output;
    bool m_bReading = true;
};
