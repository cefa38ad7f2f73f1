#include "terminal/LineMenus.h"

#include "CORE/VXSerial/Lib/ISerial.h"
#include "modem/Modem.h"
#include "platform/Wait.h"
#include "terminal/StringTable.h"
#include "terminal/TermConsole.h"
#include "terminal/UserMessage.h"

#include <array>
#include <optional>

namespace {

struct BaudChoice {
    char key;
    int baudRate;
};

struct FlowChoice {
    char key;
    DWORD flowControl;
    const char* message;
};

constexpr std::array kBaudChoices = {
    BaudChoice{'1', 19200},
    BaudChoice{'2', 57600},
    BaudChoice{'3', 115200},
    BaudChoice{'4', 230400},
};

constexpr std::array kFlowChoices = {
    FlowChoice{'1', _FLOW_NONE, "Flow Control Set to None\n"},
    FlowChoice{'2', _FLOW_RTSCTS, "Flow Control Set to Hardware\n"},
};

// The character typed, the first byte of one that has several; nothing when the menu is to end
// without one.
std::optional<char> WaitForChoice(CVModem& modem, CTermConsole& console) {
    const HANDLE hangup = modem.GetHangupHandle();
    const std::array<HANDLE, 3> handles = {console.GetReleaseEvent(), console.GetInputHandle(),
                                           hangup};
    const DWORD handleCount = hangup ? 3 : 2;

    while (console.m_bActive) {
        const DWORD signalled =
            WaitForMultipleObjects(handleCount, handles.data(), FALSE, INFINITE);
        if (signalled != WAIT_OBJECT_0 + 1)
            return std::nullopt;
        BYTE key = 0;
        if (console.ReadKey(&key)) {
            console.DropRestOfKey();
            return static_cast<char>(key);
        }
        if (console.IsInputEnded())
            return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

void BaudMenu(CVModem& modem, CTermConsole& console) {
    ShowUser(console, LoadString(kTextBaudMenu));
    const std::optional<char> key = WaitForChoice(modem, console);
    if (!key)
        return;
    for (const BaudChoice& choice : kBaudChoices)
        if (choice.key == *key)
            return ApplyBaudRate(modem, console, choice.baudRate);
    ShowUser(console, LoadString(kTextCanceled));
}

void FlowMenu(CVModem& modem, CTermConsole& console) {
    ShowUser(console, LoadString(kTextFlowMenu));
    const std::optional<char> key = WaitForChoice(modem, console);
    if (!key)
        return;
    for (const FlowChoice& choice : kFlowChoices) {
        if (choice.key != *key)
            continue;
        modem.SetFlowControl(choice.flowControl);
        return ShowUser(console, choice.message);
    }
    ShowUser(console, LoadString(kTextCanceled));
}

void ApplyBaudRate(CVModem& modem, CTermConsole& console, int baudRate) {
    // No driver has a negative rate, and as a DWORD one of them would mean "keep the rate".
    const bool applied =
        baudRate > 0 &&
        modem.SetDataFormat(static_cast<DWORD>(baudRate), KEEP_SETTING, KEEP_SETTING, KEEP_SETTING);
    ShowUser(console,
             (applied ? "Setting " : "Error setting ") + std::to_string(baudRate) + " baud\n");
}
