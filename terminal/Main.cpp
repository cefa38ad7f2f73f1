// The program's entry: the banner, the command line, and the session.

#include "diagnostics/ModuleTrace.h"
#include "platform/StandardStreams.h"
#include "terminal/CommandLine.h"
#include "terminal/DeviceName.h"
#include "terminal/Session.h"

#include <cstdio>

namespace {

constexpr char kVersion[] = "2.2";

constexpr int kExitDone = 0;
constexpr int kExitUsage = 1;

} // namespace

int main(int argc, char** argv) {
    platform::OpenClosedStreams();
    DebugSetModuleName("Mobile Wirelet");
    std::printf("Corvane v%s\n", kVersion);

    const CommandLine commandLine = ParseCommandLine(argc, argv);
    if (commandLine.wantsUsage) {
        std::fputs(GetUsageText(), stdout);
        return kExitUsage;
    }
    if (argc < 2) {
        std::fflush(stdout);
        std::fputs("wirelet: name a device, for example: wirelet /dev/ttyUSB0\n", stderr);
        return kExitUsage;
    }

    // The console writes past the C library's buffer from here on.
    std::fflush(stdout);
    RunSession(MakeDeviceName(commandLine.port), commandLine.baudRate);
    return kExitDone;
}
