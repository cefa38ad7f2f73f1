// The session's console: the ANSI screen with the keys of the terminal.
//
// Owned by the session, on its stack; used from its thread only.
#pragma once

#include "terminal/AnsiConsole.h"

#include <array>
#include <cstddef>
#include <span>

class CTermConsole final : public CAnsiConsole {
  public:
    // F5 opens the menu of baud rates, F6 the one of flow controls; every other special key sends
    // its sequence to the device, behind the characters that were typed before it. Always FALSE.
    BOOL OnKey(DWORD dwKey, BYTE* pbyChar) override;

    // Shows bytes of the device exactly as PutChar does one by one; text between sequences goes to
    // the console in one piece.
    void PutText(std::span<const BYTE> bytes);

    // Puts a typed character into the batch that goes to the device with SendTyped, or at once when
    // the batch is full: one write for a whole paste's worth of keys instead of one a key.
    void TypeChar(BYTE byChar);
    void SendTyped();

  private:
    std::array<char, 1024> m_szTyped; // as much as the write thread takes at once
    std::size_t m_nTyped = 0;
    int m_nMenuDepth = 0;
};
