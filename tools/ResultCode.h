// The modem's result codes and the frame that its lines get: words or digits, by ATV, and the error
// texts of telephone (CME) and message (CMS) commands, by AT+CMEE. Pure functions, for any thread.
#pragma once

#include "tools/ModemSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

// The values are those that numeric results (ATV0) show.
enum class EResult {
    Ok = 0,
    Connect = 1,
    Ring = 2,
    NoCarrier = 3,
    Error = 4,
    NoDialtone = 6,
    Busy = 7,
    NoAnswer = 8,
    Pending = -1, // the final result comes later: dialling, or text is being entered
};

// Which family of error codes a command answers with.
enum class EErrorKind { Plain, Telephone, Message };

// Why a command failed; each kind has a number and a text for it.
enum class EFailure {
    Unspecified,
    NotSupported,
    NotAllowed,
    NoSim,
    MemoryFull,
    BadIndex,
    BadParameter,
    BadPdu,
    TooLong
};

struct FinalResult {
    EResult code = EResult::Ok;
    EFailure failure = EFailure::Unspecified;
    EErrorKind kind = EErrorKind::Plain;
};

// The result as a line for the opener; empty for Pending and when results are off (ATQ1).
std::string FormatResult(const FinalResult& result, const ModemSettings& settings);

// What stands before and after the text of an information line or an unsolicited one.
std::string LineStart(const ModemSettings& settings);
std::string LineEnd(const ModemSettings& settings);

// The lines of one answer in one frame; empty without lines.
std::string FormatInformation(const std::vector<std::string>& lines, const ModemSettings& settings);

// The word of a result code, as ATV1 shows it; empty for Pending.
std::string_view ResultName(EResult code);

} // namespace modemsim
