#include "terminal/StringTable.h"

#include <array>

namespace {

struct StringRow {
    unsigned id;
    const char* text;
};

constexpr std::array kStrings = {
    StringRow{IDS_HINT, "Press Alt+F4 to exit.  Press F5 to change baud rate, F6 to change flow "
                        "control.\n"},
    StringRow{IDS_CANNOT_OPEN, "Cannot open device \"%s\"\nPress Enter to exit."},
    StringRow{IDS_NO_TELEPHONY, "Cannot Initialize TAPI\n"},
    StringRow{IDS_NO_DEVICES, "No modems or ports found\n"},
    StringRow{IDS_DEVICE_LIST, "Installed Modem or Ports:\n"},
    StringRow{IDS_DEVICE_PROMPT, "Enter a device number, or X to exit: "},
    StringRow{IDS_BAUD_MENU, "Baud Rate:  1 = 19200, 2 = 57600, 3 = 115200, 4 = 230400, other key "
                             "= cancel\n"},
    StringRow{IDS_CANCELED, "Canceled\n"},
    StringRow{IDS_INVALID_SELECTION, "Invalid selection.\n"},
    StringRow{IDS_FLOW_MENU,
              "Flow Control:  1 = None, 2 = Hardware (RTS/CTS), other key = cancel\n"},
};

} // namespace

const char* LoadString(unsigned id) {
    for (const StringRow& row : kStrings)
        if (row.id == id)
            return row.text;
    return "";
}
