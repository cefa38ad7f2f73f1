#include "terminal/DeviceSelection.h"

#include "platform/terminal/CharacterSet.h"
#include "platform/terminal/PrintableText.h"
#include "terminal/Decimal.h"
#include "terminal/DeviceName.h"
#include "terminal/ModemNames.h"
#include "terminal/ModuleNotices.h"
#include "terminal/OpenFailure.h"
#include "terminal/PortNames.h"
#include "terminal/StandardError.h"
#include "terminal/StringTable.h"

#include <cstdio>
#include <optional>

namespace {

constexpr int kExitNoTelephony = 1;
constexpr int kExitNoDevices = 2;

// An answer has at most one less than this many characters.
constexpr std::size_t kAnswerSize = 128;

struct Answer {
    std::string text;
    bool isCut = false; // the line was longer
};

// One line of standard input, read to its end; nothing once the input is closed.
std::optional<Answer> ReadAnswer() {
    Answer answer;
    int character = std::getchar();
    if (character == EOF)
        return std::nullopt;
    for (; character != EOF && character != '\n'; character = std::getchar()) {
        if (answer.text.size() < kAnswerSize - 1)
            answer.text += static_cast<char>(character);
        else
            answer.isCut = true;
    }
    return answer;
}

void ShowDevices(const ModemNames& modems, const PortNames& ports) {
    std::fputs(LoadString(kTextDeviceList), stdout);
    std::size_t number = 0;
    for (const auto* names : {&modems, &ports})
        for (const std::string& name : *names)
            std::printf(" %zu) %s\n", ++number,
                        platform::LocaleText(platform::PrintableText(name)).c_str());
    std::fputs(LoadString(kTextDevicePrompt), stdout);
    std::fflush(stdout);
}

// The device of a number that the menu shows; empty for any other number.
std::string FindDevice(int number, const ModemNames& modems, const PortNames& ports) {
    if (number < 1)
        return {};
    std::size_t index = static_cast<std::size_t>(number) - 1;
    if (index < modems.size())
        return modems[index];
    index -= modems.size();
    return index < ports.size() ? MakeDeviceName(ports[index]) : std::string();
}

int Fail(unsigned text, int exitCode) {
    std::fputs(LoadString(text), stdout);
    std::fflush(stdout);
    return exitCode;
}

} // namespace

DeviceSelection SelectDevice() {
    // What follows the answer belongs to the session.
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    PortNames ports;
    EnumerateComPorts(ports);
    ModemNames modems;
    if (!EnumerateModems(modems)) {
        TellOnStandardError(ExplainMissingTelephony());
        return Fail(kTextNoTelephony, kExitNoTelephony);
    }
    TellModuleFaults();
    if (modems.empty() && ports.empty())
        return Fail(kTextNoDevices, kExitNoDevices);

    for (;;) {
        ShowDevices(modems, ports);
        const std::optional<Answer> answer = ReadAnswer();
        if (!answer) {
            // The prompt's line is still open.
            std::putchar('\n');
            std::fflush(stdout);
            return kExitDone;
        }
        if (!answer->isCut) {
            const std::string device = FindDevice(ParseDecimal(answer->text), modems, ports);
            if (!device.empty())
                return device;
            if (answer->text.starts_with('x') || answer->text.starts_with('X'))
                return kExitDone;
        }
        std::fputs(LoadString(kTextInvalidSelection), stdout);
    }
}
