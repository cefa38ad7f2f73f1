// wirelet-modemsim: a simulated GSM modem on a pseudo-terminal.
#include "tools/DeviceLink.h"
#include "tools/SimulatorLoop.h"
#include "tools/SimulatorOptions.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

int Complain(const std::string& problem, int status) {
    std::fprintf(stderr, "wirelet-modemsim: %s\n", problem.c_str());
    return status;
}

int Print(const std::string& text) {
    const bool printed = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return printed ? 0 : exitFailure;
}

int Simulate(const modemsim::SSimulatorOptions& options) {
    // The device would take the place of a closed standard output and be told its own path.
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0)
        return Complain("there is no standard output for the device's path", exitFailure);
    std::string error;
    modemsim::CPtyDevice device;
    if (!device.Open(error))
        return Complain(error, exitFailure);
    modemsim::CSimulatorLoop loop(options.profile, device, options.once);
    if (!loop.CatchSignals(error))
        return Complain(error, exitFailure);
    modemsim::CDeviceLink link;
    if (!options.link.empty() && !link.Create(options.link, device.Path(), error))
        return Complain(error, exitFailure);
    if (Print(device.Path() + "\n") != 0)
        return Complain("cannot print the device's path", exitFailure);
    return loop.Run() ? 0 : Complain("waiting for the device failed", exitFailure);
}

} // namespace

int main(int argumentCount, char** arguments) {
    using modemsim::SSimulatorOptions;
    SSimulatorOptions options = modemsim::ParseOptions(argumentCount, arguments);
    options.profile.version = WIRELET_VERSION;
    options.profile.startSeconds = std::time(nullptr);
    switch (options.purpose) {
    case SSimulatorOptions::EPurpose::Help:
        return Print(modemsim::HelpText());
    case SSimulatorOptions::EPurpose::Version:
        return Print(std::string("wirelet-modemsim ") + WIRELET_VERSION + "\n");
    case SSimulatorOptions::EPurpose::Refuse:
        return Complain(options.problem + "\nTry 'wirelet-modemsim --help'.", exitUsage);
    case SSimulatorOptions::EPurpose::Run:
        break;
    }
    return Simulate(options);
}
