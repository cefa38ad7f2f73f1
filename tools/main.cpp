// wirelet-modemsim: a simulated GSM modem on a pseudo-terminal.
#include "tools/DeviceLink.h"
#include "tools/SimulatorLoop.h"
#include "tools/SimulatorOptions.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

int Complain(const std::string& problem, int status) {
    std::fprintf(stderr, "wirelet-modemsim: %s\n", problem.c_str());
    return status;
}

int Print(const std::string& text) {
    const bool printed = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return printed ? 0 : kExitFailure;
}

int Simulate(const modemsim::SimulatorOptions& options) {
    // The device would take the place of a closed standard output and be told its own path.
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0)
        return Complain("there is no standard output for the device's path", kExitFailure);
    std::string error;
    modemsim::CPtyDevice device;
    if (!device.Open(error))
        return Complain(error, kExitFailure);
    modemsim::CSimulatorLoop loop(options.profile, device, options.once);
    if (!loop.CatchSignals(error))
        return Complain(error, kExitFailure);
    modemsim::CDeviceLink link;
    if (!options.link.empty() && !link.Create(options.link, device.Path(), error))
        return Complain(error, kExitFailure);
    if (Print(device.Path() + "\n") != 0)
        return Complain("cannot print the device's path", kExitFailure);
    return loop.Run() ? 0 : Complain("waiting for the device failed", kExitFailure);
}

} // namespace

int main(int argumentCount, char** arguments) {
    using modemsim::SimulatorOptions;
    SimulatorOptions options = modemsim::ParseOptions(argumentCount, arguments);
    options.profile.version = WIRELET_VERSION;
    options.profile.startSeconds = std::time(nullptr);
    switch (options.purpose) {
    case SimulatorOptions::EPurpose::Help:
        return Print(modemsim::HelpText());
    case SimulatorOptions::EPurpose::Version:
        return Print(std::string("wirelet-modemsim ") + WIRELET_VERSION + "\n");
    case SimulatorOptions::EPurpose::Refuse:
        return Complain(options.problem + "\nTry 'wirelet-modemsim --help'.", kExitUsage);
    case SimulatorOptions::EPurpose::Run:
        break;
    }
    return Simulate(options);
}
