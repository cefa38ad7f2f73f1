// Byte by byte: what is no printable ASCII character is written as an escape, so no byte of a
// device reaches the terminal of whoever reads the log.
#include "services/debug/MessageText.h"

#include "diagnostics/DebugModule.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace debugmodule {
namespace {

// The program cuts its messages at 511 bytes.
constexpr std::size_t kMostTaken = 2000;

constexpr long kNanosecondsPerMillisecond = 1'000'000;

void AppendSafely(std::string& safe, char character) {
    constexpr char kDigits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(character);
    switch (character) {
    case '\n':
        safe += "\n    ";
        return;
    case '\r':
        safe += "\\r";
        return;
    case '\t':
        safe += "\\t";
        return;
    case '\\':
        safe += "\\\\";
        return;
    default:
        break;
    }
    if (byte >= 0x20 && byte < 0x7F) {
        safe += character;
        return;
    }
    safe += "\\x";
    safe += kDigits[byte >> 4];
    safe += kDigits[byte & 0x0F];
}

} // namespace

std::string MakeSafeText(std::string_view text) {
    text = text.substr(0, kMostTaken);
    text = text.substr(0, text.find_last_not_of('\n') + 1);
    std::string safe;
    safe.reserve(text.size() + text.size() / 8);
    for (const char character : text)
        AppendSafely(safe, character);
    return safe;
}

std::string DescribeLevel(DWORD level) {
    if (level == DEBUG_LEVEL_ERROR)
        return "error";
    if (level == DEBUG_LEVEL_TRACE)
        return "trace";
    return "level " + std::to_string(level);
}

std::string DescribeTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    localtime_r(&now.tv_sec, &parts);
    std::array<char, 32> second{};
    std::strftime(second.data(), second.size(), "%Y-%m-%d %H:%M:%S", &parts);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s.%03ld", second.data(),
                  now.tv_nsec / kNanosecondsPerMillisecond);
    return text.data();
}

} // namespace debugmodule
