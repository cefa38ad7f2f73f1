// The interactive terminal: every key goes to the device, everything the device sends is shown.
//
// Owned by the session; runs on its thread until the console is given back (Alt+F4, a control
// event), the device is gone, standard input has ended, or standard output takes no more. It blocks
// on the keyboard and the port together and never wakes without a reason. Bytes are sent only as
// the transmit buffer has room and read only as the console takes them, so neither side can stop
// the other; what is typed meanwhile waits here, up to a bound. That the device is gone is seen in
// the turn after, also in the midst of a paste, whose rest is then not taken.
#pragma once

#include "platform/Types.h"

#include <array>
#include <cstddef>
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
        static constexpr DWORD kNone = 0xFFFFFFFE;

        // Returns what a wait returns for this handle.
        DWORD Add(HANDLE handle) {
            handles[count] = handle;
            return count++;
        }

        std::array<HANDLE, 5> handles{};
        DWORD count = 0;
        DWORD news = kNone;
        DWORD keys = kNone;
        DWORD device = kNone;
    };

    Waits ChooseWaits() const;
    void Turn();
    void TakeKeys();
    // Shows what has arrived; false when there was nothing.
    bool ShowReceived();
    // Bytes typed that have not left for the device.
    std::size_t CountUnsent() const;
    // After the end: what was typed before it still goes out, as long as the device takes it.
    void FinishTyping();
    // Gives the console back when the input has ended, all that was typed is with the device, and
    // the device has been silent since.
    void EndWhenQuiet();

    CVModem& m_modem;
    CTermConsole& m_console;
    const std::string& m_strDeviceName;
    bool m_bDeviceGone = false;
    std::size_t m_nQueuedOutput = 0;
    int m_nQuietTurns = 0;
};
