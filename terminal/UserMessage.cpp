#include "terminal/UserMessage.h"

#include "platform/CharacterSet.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/PrintableText.h"
#include "terminal/CommandLine.h"
#include "terminal/Console.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>

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
    ErrorText{ERROR_TIMEOUT, "it took nothing for ten seconds"},
    ErrorText{ERROR_NOT_ENOUGH_QUOTA, "it takes the bytes too slowly"},
};

// The analyser takes the list of arguments for one that nobody began.
std::string Format(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length =
        std::vsnprintf(nullptr, 0, format, arguments); // NOLINT(*valist.Uninitialized)
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again); // NOLINT(*valist.Uninitialized)
    va_end(again);
    return text;
}

// Standard error may be the user's terminal: a name that holds control characters must not act
// there.
void WriteToStandardError(const std::string& text) {
    const std::size_t end = text.find_last_not_of('\n') + 1;
    const std::size_t begin = std::min(text.find_first_not_of('\n'), end);
    const std::string shown =
        platform::PrintableText(std::string_view(text).substr(begin, end - begin));
    std::fprintf(stderr, "%s\n", platform::LocaleText(shown).c_str());
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

void ShowUser(CConsole& console, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = Format(format, arguments);
    va_end(arguments);
    console.WriteText(text.data(), static_cast<DWORD>(text.size()));
}

void TellUser(CConsole& console, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = Format(format, arguments);
    va_end(arguments);

    if (!console.WriteText(text.data(), static_cast<DWORD>(text.size())))
        WriteToStandardError(text);
}

void TellDeviceGone(CConsole& console, const std::string& deviceName) {
    TellUser(console, "\nThe device %s is gone: unplugged, or its other end was closed.\n",
             deviceName.c_str());
}

void TellReason(CConsole& console, DWORD error, const std::string& file) {
    TellUser(console, "(%s)\n", DescribeOpenError(error, file));
}

const char* DescribeError(DWORD error) {
    for (const ErrorText& row : kErrorTexts)
        if (row.error == error)
            return row.text;
    return "the system gave no reason";
}
