#include "tools/ResultCode.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

struct NamedResult {
    EResult code;
    std::string_view name;
};

constexpr NamedResult kResultNames[] = {
    {EResult::Ok, "OK"},       {EResult::Connect, "CONNECT"},
    {EResult::Ring, "RING"},   {EResult::NoCarrier, "NO CARRIER"},
    {EResult::Error, "ERROR"}, {EResult::NoDialtone, "NO DIALTONE"},
    {EResult::Busy, "BUSY"},   {EResult::NoAnswer, "NO ANSWER"},
};

// Numbers and texts as the telephone standards 27.007 and 27.005 give them.
struct FailureText {
    EFailure failure;
    int telephoneNumber;
    std::string_view telephoneText;
    int messageNumber;
    std::string_view messageText;
};

constexpr FailureText kFailureTexts[] = {
    {EFailure::Unspecified, 100, "unknown", 500, "unknown error"},
    {EFailure::NotSupported, 4, "operation not supported", 303, "operation not supported"},
    {EFailure::NotAllowed, 3, "operation not allowed", 302, "operation not allowed"},
    {EFailure::NoSim, 10, "SIM not inserted", 310, "SIM not inserted"},
    {EFailure::MemoryFull, 20, "memory full", 322, "memory full"},
    {EFailure::BadIndex, 21, "invalid index", 321, "invalid memory index"},
    {EFailure::BadParameter, 50, "incorrect parameters", 305, "invalid text mode parameter"},
    {EFailure::BadPdu, 50, "incorrect parameters", 304, "invalid PDU mode parameter"},
    {EFailure::TooLong, 24, "text string too long", 305, "invalid text mode parameter"},
};

// The extended error code; empty when the plain ERROR is due.
std::string ExtendedError(const FinalResult& result, int errorLevel) {
    if (result.code != EResult::Error || result.kind == EErrorKind::Plain || errorLevel == 0)
        return {};
    const auto* found = std::ranges::find(kFailureTexts, result.failure, &FailureText::failure);
    const FailureText& row = found == std::end(kFailureTexts) ? kFailureTexts[0] : *found;
    const bool telephone = result.kind == EErrorKind::Telephone;
    std::string text = telephone ? "+CME ERROR: " : "+CMS ERROR: ";
    if (errorLevel == 1)
        return text + std::to_string(telephone ? row.telephoneNumber : row.messageNumber);
    return text.append(telephone ? row.telephoneText : row.messageText);
}

} // namespace

std::string_view ResultName(EResult code) {
    const auto* found = std::ranges::find(kResultNames, code, &NamedResult::code);
    return found == std::end(kResultNames) ? std::string_view{} : found->name;
}

std::string LineStart(const ModemSettings& settings) {
    return settings.verbose != 0 ? LineEnd(settings) : std::string{};
}

std::string LineEnd(const ModemSettings& settings) {
    return {static_cast<char>(settings.registers[3]), static_cast<char>(settings.registers[4])};
}

std::string FormatResult(const FinalResult& result, const ModemSettings& settings) {
    if (result.code == EResult::Pending || settings.quiet != 0)
        return {};
    const std::string extended = ExtendedError(result, settings.errorLevel);
    if (!extended.empty())
        return LineStart(settings) + extended + LineEnd(settings);
    if (settings.verbose == 0)
        return std::to_string(static_cast<int>(result.code)) +
               static_cast<char>(settings.registers[3]);
    return LineStart(settings).append(ResultName(result.code)) + LineEnd(settings);
}

std::string FormatInformation(const std::vector<std::string>& lines,
                              const ModemSettings& settings) {
    if (lines.empty())
        return {};
    std::string text = LineStart(settings);
    for (const std::string& line : lines)
        text.append(line).append(LineEnd(settings));
    return text;
}

} // namespace modemsim
