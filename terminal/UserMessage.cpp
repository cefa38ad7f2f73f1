#include "terminal/UserMessage.h"

#include "platform/Error.h"
#include "platform/File.h"
#include "platform/terminal/StandardStreams.h"
#include "terminal/CommandLine.h"
#include "terminal/Console.h"
#include "terminal/StandardError.h"

#include <array>

namespace {

struct ErrorText {
    DWORD error;
    const char* text;
};

constexpr std::array kErrorTexts = {
    ErrorText{ERROR_FILE_NOT_FOUND, "there is no such file"},
    ErrorText{ERROR_PATH_NOT_FOUND, "there is no such folder"},
    ErrorText{ERROR_ACCESS_DENIED, "access is denied"},
    ErrorText{ERROR_NOT_ENOUGH_MEMORY, "a line is too long"},
    ErrorText{ERROR_WRITE_FAULT, "the system refused the bytes"},
    ErrorText{ERROR_READ_FAULT, "the system could not read it"},
    ErrorText{ERROR_SHARING_VIOLATION, "another program has it open"},
    ErrorText{ERROR_DISK_FULL, "the disk is full"},
    ErrorText{ERROR_OPERATION_ABORTED, "the end came before it had taken all"},
    ErrorText{ERROR_TIMEOUT, "it took nothing for ten seconds"},
    ErrorText{ERROR_NOT_ENOUGH_QUOTA, "it takes the bytes too slowly"},
};

// With standard output in a pipe or a file the screen is not what the user sees.
bool IsScreenSeen() {
    return platform::IsOutputTerminal();
}

const char* DescribeOpenError(DWORD error, const std::string& file) {
    if (error == ERROR_ACCESS_DENIED && platform::IsFolder(file.c_str()))
        return "it is a directory";
    if (error != ERROR_SHARING_VIOLATION)
        return DescribeError(error);
    if (platform::IsSameFile(file.c_str(), g_strCommandFile.c_str()))
        return "it is the command file itself";
    if (platform::IsSameFile(file.c_str(), g_strScriptFile.c_str()))
        return "it is the script file itself";
    return DescribeError(error);
}

} // namespace

void ShowUser(CConsole& console, std::string_view text) {
    console.WriteText(text.data(), static_cast<DWORD>(text.size()));
}

void TellUser(CConsole& console, std::string_view text) {
    if (!IsScreenSeen() || !console.WriteText(text.data(), static_cast<DWORD>(text.size())))
        TellOnStandardError(text);
}

void TellFileError(CConsole& console, std::string_view failure, const std::string& file,
                   DWORD error) {
    TellUser(console, std::string(failure) + " " + file + ": " + DescribeError(error) + "\n");
}

void TellDeviceGone(CConsole& console, const std::string& deviceName) {
    TellUser(console,
             "\nThe device " + deviceName + " is gone: unplugged, or its other end was closed\n");
}

void TellFileFailure(CConsole& console, const char* failure, const std::string& file, DWORD error) {
    const char* const reason = DescribeOpenError(error, file);
    const std::string text = failure + (" " + file) + "\n";
    const bool isShown = console.WriteText(text.data(), static_cast<DWORD>(text.size()));
    if (isShown && IsScreenSeen())
        ShowUser(console, std::string("(") + reason + ")\n");
    else
        TellOnStandardError(failure + (" " + file) + ": " + reason);
}

const char* DescribeError(DWORD error) {
    for (const ErrorText& row : kErrorTexts)
        if (row.error == error)
            return row.text;
    return "the system gave no reason";
}
