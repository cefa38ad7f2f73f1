// The state that commands work on, what a command answers, and the table that leads from a
// command's name to what it does. One thread at a time; nothing here knows how bytes get in or out.
#pragma once

#include "tools/Call.h"
#include "tools/CommandLine.h"
#include "tools/MessageEntry.h"
#include "tools/MessageStore.h"
#include "tools/ModemSettings.h"
#include "tools/SimulatorProfile.h"

#include <span>

namespace modemsim {

struct Modem {
    SimulatorProfile profile;
    ModemSettings settings;
    CMessageStore store;
    CMessageEntry entry;
    CCall call;
    int registration = 1;         // as +CREG shows it: 1 registered at home, 2 searching
    std::int64_t clockOffset = 0; // seconds that AT+CCLK put the calendar clock forward
    int messageReference = 0;
    TimeMs now = 0;

    // Seconds since 1970, UTC.
    std::int64_t CalendarSeconds() const;

    // Factory settings, as the profile changes them.
    ModemSettings FactorySettings() const;
};

// What the test command AT+SIM lets happen, once its line was answered.
enum class EHappening { None, Ring, Message, Registration, FarHangUp, Vanish, Silence, Flood };

struct Event {
    EHappening kind = EHappening::None;
    std::string text;
    std::string number;
    int value = 0;
};

struct Reply {
    std::vector<std::string> lines;
    std::uint64_t longLine = 0; // characters of one more line, made up while it is sent
    Event event;
};

// A handler's answer. Failures take their number and family from the command's table entry.
struct Outcome {
    EResult code = EResult::Ok;
    EFailure failure = EFailure::Unspecified;

    static Outcome Fail(EFailure failure) { return {EResult::Error, failure}; }
};

using CommandHandler = Outcome (*)(Modem& modem, const Command& command, Reply& reply);

struct CommandEntry {
    std::string_view name;
    unsigned forms; // of EForm, those the handler takes; the test form is answered by the table
    EErrorKind kind;
    bool needsSim;
    CommandHandler handler;
    std::string_view test; // the answer to "=?" after "+NAME: "; "-": OK alone; empty: none
};

// A parameter that is one number within a range.
struct NumberEntry {
    std::string_view name;
    int ModemSettings::*value;
    int low;
    int high;
    EErrorKind kind;
};

inline constexpr unsigned kExecuteForm = static_cast<unsigned>(EForm::Execute);
inline constexpr unsigned kReadForm = static_cast<unsigned>(EForm::Read);
inline constexpr unsigned kSetForm = static_cast<unsigned>(EForm::Set);

// The groups of commands, each in a file of its own.
std::span<const CommandEntry> BasicCommands();
std::span<const CommandEntry> NetworkCommands();
std::span<const CommandEntry> MessageCommands();
std::span<const CommandEntry> TestCommands();

// Runs one command; the reply gets what it answers before the result.
FinalResult RunCommand(Modem& modem, const Command& command, Reply& reply);

// Ends the entry that AT+CMGS began: keeps the message as sent and answers its reference.
FinalResult SendEnteredMessage(Modem& modem, Reply& reply);

// Calendar time as the modem writes it, "24/05/31,12:00:00+00".
std::string CalendarText(std::int64_t seconds);

// The registration state as +CREG shows it, with area and cell when AT+CREG=2 asked for them.
std::string RegistrationText(const Modem& modem);

} // namespace modemsim
