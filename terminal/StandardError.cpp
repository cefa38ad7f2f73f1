#include "terminal/StandardError.h"

#include "platform/terminal/CharacterSet.h"
#include "platform/terminal/PrintableText.h"
#include "platform/terminal/StandardStreams.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr char kName[] = "wirelet: ";

// A character counts as one column: most do, and a break too early or too late harms nobody.
std::size_t CountColumns(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

} // namespace

std::string BreakBetweenWords(std::string_view text, std::size_t columns) {
    std::string result;
    std::size_t used = 0;
    while (columns != 0 && !text.empty()) {
        const std::size_t end = std::min(text.find_first_of(" \n", 1), text.size());
        const std::string_view word = text.substr(0, end);
        const std::size_t width = CountColumns(word);
        const bool isBroken = word.front() == ' ' && used + width > columns;
        used = isBroken || word.front() == '\n' ? width - 1 : used + width;
        result.append(isBroken ? "\n" : "", isBroken ? 1 : 0).append(word.substr(isBroken ? 1 : 0));
        text.remove_prefix(end);
    }
    return result.append(text);
}

void TellOnStandardError(std::string_view message) {
    const std::size_t begin = std::min(message.find_first_not_of('\n'), message.size());
    message = message.substr(begin, message.find_last_not_of('\n') + 1 - begin);
    const std::string beginning = message.starts_with(kName) ? "" : kName;
    const std::string line = beginning + platform::PrintableText(message);
    const std::string broken = BreakBetweenWords(line, platform::ErrorColumns());
    std::fprintf(stderr, "%s\n", platform::LocaleText(broken).c_str());
}
