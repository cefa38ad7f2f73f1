// The session's console: the ANSI screen with the keys of the terminal.
//
// Owned by the session, on its stack; used from its thread only.
#pragma once

#include "terminal/AnsiConsole.h"

#include <cstddef>
#include <string>

class CTermConsole final : public CAnsiConsole {
  public:
    // F5 opens the menu of baud rates, F6 the one of flow controls; every other special key sends
    // its sequence to the device, behind the characters that were typed before it. Always FALSE.
    BOOL OnKey(DWORD key, BYTE* character) override;

    // Puts a typed character behind those that have still to go to the device.
    void TypeChar(BYTE character) { m_strTyped += static_cast<char>(character); }

    // Sends of them what the transmit buffer has room for; never blocks.
    void SendTyped();

    // How many bytes have still to go to the device.
    std::size_t GetTypedAhead() const { return m_strTyped.size() - m_nSent; }

  private:
    void ForgetSent();

    std::string m_strTyped;
    std::size_t m_nSent = 0; // of the typed bytes, those at the front that have gone
    int m_nMenuDepth = 0;
};
