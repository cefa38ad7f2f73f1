#include "terminal/Session.h"

#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/PrintableText.h"
#include "terminal/CommandFile.h"
#include "terminal/CommandLine.h"
#include "terminal/DeviceName.h"
#include "terminal/InteractiveTerminal.h"
#include "terminal/LineMenus.h"
#include "terminal/StringTable.h"
#include "terminal/TermConsole.h"
#include "terminal/TermModem.h"
#include "terminal/UserMessage.h"

#include <array>
#include <cstdio>

namespace {

constexpr int kDefaultBaudRate = 19200;
constexpr std::size_t kTitleSize = 256;

// How long the device may take no byte, at the end of a session, before the rest is given up.
constexpr DWORD kDrainTime = 2000;

BOOL OpenDevice(CTermModem& modem, const std::string& deviceName) {
    if (IsComPort(deviceName))
        return modem.Open(deviceName);
    // Nothing here knows modems by name.
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
}

void ReportOpenFailure(const std::string& deviceName, const std::string& title) {
    const std::string reason = platform::ExplainPortOpenFailure(deviceName.c_str(), GetLastError());
    // A switch in the port's place is what a newcomer types who looks for help.
    const bool asksForHelp = deviceName.starts_with('-');
    std::fprintf(stderr, "%s%s\n", reason.c_str(),
                 asksForHelp ? "; wirelet -? tells the usage" : "");
    std::printf(LoadString(IDS_CANNOT_OPEN), platform::PrintableText(title).c_str());
    std::fflush(stdout);
    static_cast<void>(std::getchar());
}

void SetTitle(CTermConsole& console, const std::string& title) {
    std::array<char, kTitleSize> text;
    std::snprintf(text.data(), text.size(), "Corvane - %s", title.c_str());
    console.SetTitle(text.data());
}

void RunMode(CTermModem& modem, CTermConsole& console, const std::string& title) {
    if (!g_strScriptFile.empty())
        return TellUser(console, "Cannot run %s: this version has no script engine\n",
                        g_strScriptFile.c_str());
    if (!g_strCommandFile.empty())
        return RunCommandFile(modem, console, g_strCommandFile, title);
    CInteractiveTerminal(modem, console, title).Run();
}

} // namespace

void RunSession(const std::string& deviceName, int baudRate) {
    CTermModem modem;
    CTermConsole console;

    const bool isComPort = IsComPort(deviceName);
    const std::string title = isComPort ? GetPortDisplayName(deviceName) : deviceName;
    if (!OpenDevice(modem, deviceName))
        return ReportOpenFailure(deviceName, title);
    if (isComPort && baudRate == 0)
        baudRate = kDefaultBaudRate;

    if (!console.Attach(&modem))
        return;
    SetTitle(console, title);
    console.ClearScreen();
    console.SetCursorPosition(0, 0);
    ShowUser(console, "%s", LoadString(IDS_HINT));
    if (baudRate != 0)
        ApplyBaudRate(modem, console, baudRate);

    RunMode(modem, console, title);
    modem.Drain(kDrainTime);
}
