#include "terminal/CommandLine.h"

#include "terminal/Decimal.h"

#include <array>
#include <cstdlib>
#include <string_view>

std::string g_strCommandFile;
std::string g_strOutputFile;
std::string g_strScriptFile;

namespace {

struct FileSwitch {
    char letter;
    std::string* value;
};

constexpr char kBaudSwitch = 'B';
const std::array kFileSwitches = {
    FileSwitch{'A', &g_strCommandFile},
    FileSwitch{'O', &g_strOutputFile},
    FileSwitch{'S', &g_strScriptFile},
};

bool IsSwitch(std::string_view argument) {
    return argument.size() >= 3 && (argument[0] == '-' || argument[0] == '/') && argument[2] == ':';
}

char ToUpper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - ('a' - 'A')) : letter;
}

// The shell expands "~/" only where a word begins.
std::string ExpandHome(std::string_view path) {
    const char* const home = std::getenv("HOME");
    if (!home || !path.starts_with("~/"))
        return std::string(path);
    return home + std::string(path.substr(1));
}

void ApplySwitch(std::string_view argument, CommandLine& commandLine) {
    if (!IsSwitch(argument))
        return;

    const char letter = ToUpper(argument[1]);
    const std::string_view value = argument.substr(3);
    if (letter == kBaudSwitch)
        commandLine.baudRate = ParseDecimal(value);
    for (const FileSwitch& fileSwitch : kFileSwitches)
        if (fileSwitch.letter == letter)
            *fileSwitch.value = ExpandHome(value);
}

} // namespace

CommandLine ParseCommandLine(int argumentCount, const char* const* arguments) {
    CommandLine commandLine;
    if (argumentCount < 2)
        return commandLine;

    commandLine.port = arguments[1];
    commandLine.wantsUsage = commandLine.port == "-?" || commandLine.port == "/?";
    const bool wantsCheck = commandLine.port == "--check";
    // Of several files none is passed over without a word.
    if (wantsCheck && argumentCount == 3)
        commandLine.checkedFile = arguments[2];
    commandLine.wantsUsage |= wantsCheck && commandLine.checkedFile.empty();
    if (wantsCheck || commandLine.wantsUsage)
        return commandLine;

    for (int index = 2; index < argumentCount; ++index)
        ApplySwitch(arguments[index], commandLine);
    return commandLine;
}

const char* GetUsageText() {
    return "A terminal for phones and data modems; see wirelet(1).\n"
           "Usage:\n"
           "WIRELET <port> [-A:<CommandFile> -B:<BaudRate> -O:<OutputFile>\n"
           "                 -S:<ScriptFile>]\n"
           "Example:  WIRELET COM1 -A:Test.dat -B:115200 -O:Out.txt\n";
}
