#include "terminal/OpenFailure.h"

#include "modem/Modem.h"
#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/terminal/CharacterSet.h"
#include "platform/terminal/PrintableText.h"
#include "terminal/DeviceName.h"
#include "terminal/ModemNames.h"
#include "terminal/ModuleNotices.h"
#include "terminal/StandardError.h"
#include "terminal/StringTable.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t kMostNames = 8;

std::string Quoted(const std::string& name) {
    return "\"" + platform::PrintableText(name) + "\"";
}

// A name that no modem has.
std::string ExplainUnknown(const std::string& name) {
    std::string text = Quoted(name) + ": no modem has this name";
    ModemNames modems;
    EnumerateModems(modems);
    TellModuleFaults();
    for (std::size_t index = 0; index < std::min(modems.size(), kMostNames); ++index)
        text += (index == 0 ? "; there are " : ", ") + Quoted(modems[index]);
    if (modems.size() > kMostNames)
        text += " and others";
    const std::string path = platform::FindSerialDevice(name);
    if (!path.empty())
        return text + "; the serial device of that name is opened as " +
               platform::PrintableText(path);
    return text + "; a serial device is named by its full path, such as /dev/ttyUSB0";
}

// Not the device's doing: the service does not take it for a modem, say.
std::string ExplainRefusedModem(const std::string& name, const std::string& path, DWORD error) {
    std::string text =
        Quoted(name) + ": the telephony service refuses (error " + std::to_string(error) + ")";
    if (!path.empty())
        text += "; without it the device is opened as " + platform::PrintableText(path);
    return text;
}

// A modem that is known and did not open.
std::string ExplainModem(const std::string& name, const std::string& path, DWORD error) {
    switch (error) {
    case ERROR_MOD_NOT_FOUND:
        return Quoted(name) + ": " + ExplainMissingTelephony();
    case ERROR_BUSY:
        return Quoted(name) + ": ModemManager uses it and does not let go of it; stop it with "
                              "'sudo systemctl stop ModemManager', or run wirelet with sudo, "
                              "which may ask for it";
    case ERROR_TIMEOUT:
        return Quoted(name) + ": the telephony service did not answer in time; try again";
    case ERROR_GEN_FAILURE:
        return ExplainRefusedModem(name, path, error);
    default:
        return path.empty()
                   ? ExplainRefusedModem(name, path, error)
                   : Quoted(name) + ", " + platform::ExplainPortOpenFailure(path.c_str(), error);
    }
}

std::string Explain(const CVModem& modem, const std::string& name, DWORD error) {
    if (IsComPort(name))
        return platform::ExplainPortOpenFailure(name.c_str(), error);
    // A switch in the port's place is what a newcomer types who looks for help.
    if (name.starts_with('-'))
        return Quoted(name) + ": no port and no modem; wirelet -? tells the usage";
    const std::string& path = modem.GetDevicePath();
    if (error == ERROR_FILE_NOT_FOUND && path.empty())
        return ExplainUnknown(name);
    return ExplainModem(name, path, error);
}

} // namespace

const char* ExplainMissingTelephony() {
    return "there is no telephony service: libtapi32.so, which belongs beside the program or in "
           "../lib/wirelet from there, cannot be loaded; install Wirelet again";
}

void ReportOpenFailure(const CVModem& modem, const std::string& deviceName,
                       const std::string& title, DWORD error) {
    TellOnStandardError(Explain(modem, deviceName, error));
    const std::string shown = platform::LocaleText(platform::PrintableText(title));
    std::printf(LoadString(kTextCannotOpen), shown.c_str());
    std::fflush(stdout);
    static_cast<void>(std::getchar());
}
