// The program's entry: the banner, the command line, and the session.

#include "common/InterfacePtr.h"
#include "diagnostics/ModuleTrace.h"
#include "platform/terminal/StandardStreams.h"
#include "telephony/ITapi.h"
#include "terminal/CheckCommand.h"
#include "terminal/CommandLine.h"
#include "terminal/DeviceName.h"
#include "terminal/DeviceSelection.h"
#include "terminal/ModuleNotices.h"
#include "terminal/Session.h"

#include <cstdio>

namespace {

constexpr char kVersion[] = "2.2";

constexpr int kExitUsage = 1;

} // namespace

int main(int argc, char** argv) {
    platform::OpenClosedStreams();
    ListenToModules();
    DebugSetModuleName("Mobile Wirelet");
    const CommandLine commandLine = ParseCommandLine(argc, argv);
    // Its output is for programs to read.
    if (!commandLine.checkedFile.empty())
        return CheckScriptFile(commandLine.checkedFile);
    std::printf("Corvane v%s\n", kVersion);

    if (commandLine.wantsUsage) {
        std::fputs(GetUsageText(), stdout);
        return kExitUsage;
    }
    std::string deviceName = MakeDeviceName(commandLine.port);
    // Keeps the telephony service as the list has shown it: started anew, it could give the chosen
    // name to another modem.
    CInterfacePtr<ITapi> telephony;
    if (argc < 2) {
        CreateTapi(telephony.Receive(), nullptr);
        const DeviceSelection selection = SelectDevice();
        if (const int* exitCode = std::get_if<int>(&selection))
            return *exitCode;
        deviceName = std::get<std::string>(selection);
    }

    // The console writes past the C library's buffer from here on.
    std::fflush(stdout);
    RunSession(deviceName, commandLine.baudRate);
    return kExitDone;
}
