// The interactive terminal: every key goes to the device, everything the device sends is shown.
//
// Owned by the session; runs on its thread until the console is given back (Alt+F4, a control
// event), the device is gone, standard input has ended, or standard output takes no more. It blocks
// on the keyboard and the port together and never wakes without a reason. Keys are taken only as
// the transmit buffer has room, and bytes are read only as the console takes them, so neither side
// can stop the other.
#pragma once

#include "platform/Types.h"

#include <array>
#include <string>

class CTermConsole;
class CVModem;

class CInteractiveTerminal {
  public:
    CInteractiveTerminal(CVModem& modem, CTermConsole& console, const std::string& deviceName);

    // Sends the initialisation and works until the end; tells the user when the device is gone.
    void Run();

  private:
    // What one turn waits for.
    struct Waits {
        std::array<HANDLE, 3> handles;
        bool takesKeys;
        bool shows;
    };

    Waits ChooseWaits() const;
    void Turn();
    void TakeKeys();
    // Shows what has arrived; false when there was nothing.
    bool ShowReceived();
    void EndUnseen();
    // Gives the console back when the input has ended, all that was typed is with the device, and
    // the device has been silent since.
    void EndWhenQuiet();

    CVModem& m_modem;
    CTermConsole& m_console;
    const std::string& m_deviceName;
    bool m_deviceGone = false;
    DWORD m_queuedOutput = 0;
    int m_quietTurns = 0;
};
