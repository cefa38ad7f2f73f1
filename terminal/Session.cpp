// The order is the point: nothing is replaced before the device is open and the script can be read,
// the log ends before the device closes, and what is left to say comes when the console is given
// back. What stands on the stack sees to all that, whichever way a session ends.
#include "terminal/Session.h"

#include "common/UniqueHandle.h"
#include "console/Console.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Wait.h"
#include "platform/objects/EndRequest.h"
#include "platform/terminal/StandardStreams.h"
#include "script/Script.h"
#include "terminal/CommandFile.h"
#include "terminal/CommandLine.h"
#include "terminal/DeviceName.h"
#include "terminal/InteractiveTerminal.h"
#include "terminal/LineMenus.h"
#include "terminal/ModuleNotices.h"
#include "terminal/OpenFailure.h"
#include "terminal/StandardError.h"
#include "terminal/StringTable.h"
#include "terminal/TermConsole.h"
#include "terminal/TermModem.h"
#include "terminal/TraceLog.h"
#include "terminal/UserMessage.h"

#include <array>
#include <cstdio>

namespace {

constexpr int kDefaultBaudRate = 19200;
constexpr std::size_t kTitleSize = 256;

// How long the device may take no byte, at the end of a session, before the rest is given up.
constexpr DWORD kDrainTime = 2000;

// How long what was typed or sent before may still go out, and the log to its file, once the end
// has been asked for. With the closing of the device it is to be less than three seconds.
constexpr DWORD kEndGrace = 1500;

void SetTitle(CTermConsole& console, const std::string& title) {
    std::array<char, kTitleSize> text;
    std::snprintf(text.data(), text.size(), "Corvane - %s", title.c_str());
    console.SetTitle(text.data());
}

// Also with bytes unread that it sent before.
bool IsUnplugged(CTermModem& modem) {
    const HANDLE hangup = modem.GetHangupHandle();
    return hangup && WaitForSingleObject(hangup, 0) == WAIT_OBJECT_0;
}

// What the script's own message does not tell about its file.
std::string ExplainScriptFile(const CVScript& script) {
    const std::string& file = g_strScriptFile;
    if (platform::IsFolder(g_strScriptFile.c_str()))
        return file + " is a directory, not a script";
    if (!script.HasUnixLineEnds())
        return {};
    return file + " has Unix line ends, a script needs CR LF: convert it with \"unix2dos " + file +
           "\" (of the package dos2unix), or save it so in the editor";
}

// Returns what is left to be said once the console has been given back.
std::string RunScript(CTermModem& modem, CTermConsole& console, const std::string& title) {
    CVScript script;
    script.Run(g_strScriptFile.c_str(), &modem);
    // While its last message stands on the screen, the script does not see to the device.
    if (script.IsDeviceGone() || IsUnplugged(modem))
        TellDeviceGone(console, title);
    return ExplainScriptFile(script);
}

// The session is a script's or a command file's.
bool IsRun() {
    return !g_strScriptFile.empty() || !g_strCommandFile.empty();
}

HANDLE OpenForReading(const std::string& fileName) {
    return CreateFileA(fileName.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                       nullptr);
}

std::string RunMode(CTermModem& modem, CTermConsole& console, const std::string& title) {
    // With a command file that is sent the output file is for its answers.
    bool isLogged =
        !g_strOutputFile.empty() && (g_strCommandFile.empty() || !g_strScriptFile.empty());
    // Held open, neither file can be replaced by the log; without a script nothing is replaced.
    CUniqueHandle script;
    CUniqueHandle commands;
    if (isLogged && !g_strScriptFile.empty()) {
        script.Reset(OpenForReading(g_strScriptFile));
        commands.Reset(OpenForReading(g_strCommandFile));
        isLogged = script != INVALID_HANDLE_VALUE;
    }
    CTraceLog log(console);
    if (isLogged && !log.Open(g_strOutputFile))
        return {};
    if (!IsRun()) {
        CInteractiveTerminal(modem, console, title).Run();
        return {};
    }
    const platform::CEndGrace none(0);
    console.OutliveBreak();
    if (!g_strScriptFile.empty())
        return RunScript(modem, console, title);
    RunCommandFile(modem, console, g_strCommandFile, title);
    return {};
}

// Opens the device, takes the console over, runs the mode, and gives both back. Returns as RunMode.
std::string RunOnDevice(const std::string& deviceName, int baudRate) {
    CTermModem modem;
    CTermConsole console;

    const bool isComPort = IsComPort(deviceName);
    const std::string title = isComPort ? GetPortDisplayName(deviceName) : deviceName;
    const std::string path = isComPort ? GetPortPath(deviceName) : deviceName;
    if (!(isComPort ? modem.Open(path) : modem.OpenDevice(deviceName))) {
        ReportOpenFailure(modem, path, title, GetLastError());
        return {};
    }
    if (isComPort && baudRate == 0)
        baudRate = kDefaultBaudRate;

    HoldModuleNews();
    if (!console.Attach(&modem))
        return {};
    platform::EndOnSignals();
    const platform::CEndGrace grace(kEndGrace);
    SetTitle(console, title);
    console.ClearScreen();
    console.SetCursorPosition(0, 0);
    ShowUser(console, LoadString(kTextHint));
    if (baudRate != 0)
        ApplyBaudRate(modem, console, baudRate);

    std::string lastWords = RunMode(modem, console, title);
    modem.Drain(kDrainTime);
    return lastWords;
}

} // namespace

void RunSession(const std::string& deviceName, int baudRate) {
    const std::string lastWords = RunOnDevice(deviceName, baudRate);
    if (platform::IsOutputLost() && !platform::IsEndRequested() && platform::IsErrorReady())
        TellOnStandardError("standard output takes no more; not all was shown");
    if (!lastWords.empty())
        TellOnStandardError(lastWords);
    TellModuleNews();
    // Whoever started the run is to see that it did not come to its end.
    if (IsRun() && platform::IsEndRequested())
        platform::EndBySignal();
}
