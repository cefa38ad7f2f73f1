#include "terminal/CheckCommand.h"

#include "common/UniqueHandle.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/terminal/PrintableText.h"
#include "script/ScriptCheck.h"
#include "terminal/StandardError.h"
#include "terminal/UserMessage.h"

#include <array>
#include <cstdio>

namespace {

constexpr int kClean = 0;
constexpr int kFaulty = 1;

// Far beyond what the engine loads: most of it would be comments.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

// False, with the last error set, when the file cannot be read.
bool ReadScript(const std::string& path, std::string& text) {
    const HANDLE opened = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return false;
    const CUniqueHandle file(opened);
    std::array<char, 4096> buffer;
    DWORD count = 0;
    do {
        if (!ReadFile(opened, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr))
            return false;
        text.append(buffer.data(), count);
    } while (count > 0 && text.size() < kMostBytes);
    return true;
}

} // namespace

int CheckScriptFile(const std::string& path) {
    const std::string name = platform::PrintableText(path);
    std::string text;
    if (!ReadScript(path, text)) {
        TellOnStandardError(name + ": " + DescribeError(GetLastError()));
        return kFaulty;
    }
    const CScriptCheck check(text);
    for (const auto& [line, finding] : check.Findings())
        std::printf("%s:%lu: %s\n", name.c_str(), static_cast<unsigned long>(line),
                    platform::PrintableText(finding).c_str());
    return check.Findings().empty() ? kClean : kFaulty;
}
