#include "terminal/StringTable.h"

#include <array>

namespace {

struct StringRow {
    unsigned id;
    const char* text;
};

constexpr std::array kStrings = {
    StringRow{kTextHint, "Press Alt+F4 to exit.  Press F5 to change baud rate, F6 to change flow "
                         "control.\n"},
    StringRow{kTextCannotOpen, "Cannot open device \"%s\"\nPress Enter to exit."},
    StringRow{kTextNoTelephony, "Cannot Initialize TAPI\n"},
    StringRow{kTextNoDevices, "No modems or ports found\n"},
    StringRow{kTextDeviceList, "Installed Modem or Ports:\n"},
    StringRow{kTextDevicePrompt, "Enter a device number, or X to exit: "},
    StringRow{kTextBaudMenu, "Baud Rate:  1 = 19200, 2 = 57600, 3 = 115200, 4 = 230400, other key "
                             "= cancel\n"},
    StringRow{kTextCanceled, "Canceled\n"},
    StringRow{kTextInvalidSelection, "Invalid selection.\n"},
    StringRow{kTextFlowMenu,
              "Flow Control:  1 = None, 2 = Hardware (RTS/CTS), other key = cancel\n"},
};

} // namespace

const char* LoadString(unsigned id) {
    for (const StringRow& row : kStrings)
        if (row.id == id)
            return row.text;
    return "";
}
