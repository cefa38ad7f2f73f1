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

struct SModem {
    SSimulatorProfile profile;
    SModemSettings settings;
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
    SModemSettings FactorySettings() const;
};

// What the test command AT+SIM lets happen, once its line was answered.
enum class EHappening { None, Ring, Message, Registration, FarHangUp, Vanish, Silence, Flood };

struct SEvent {
    EHappening kind = EHappening::None;
    std::string text;
    std::string number;
    int value = 0;
};

struct SReply {
    std::vector<std::string> lines;
    std::uint64_t longLine = 0; // characters of one more line, made up while it is sent
    SEvent event;
};

// A handler's answer. Failures take their number and family from the command's table entry.
struct SOutcome {
    EResult code = EResult::Ok;
    EFailure failure = EFailure::Unspecified;

    static SOutcome Fail(EFailure failure) { return {EResult::Error, failure}; }
};

using CommandHandler = SOutcome (*)(SModem& modem, const SCommand& command, SReply& reply);

struct SCommandEntry {
    std::string_view name;
    unsigned forms; // of EForm, those the handler takes; the test form is answered by the table
    EErrorKind kind;
    bool needsSim;
    CommandHandler handler;
    std::string_view test; // the answer to "=?" after "+NAME: "; "-": OK alone; empty: none
};

// A parameter that is one number within a range.
struct SNumberEntry {
    std::string_view name;
    int SModemSettings::*value;
    int low;
    int high;
    EErrorKind kind;
};

inline constexpr unsigned executeForm = static_cast<unsigned>(EForm::Execute);
inline constexpr unsigned readForm = static_cast<unsigned>(EForm::Read);
inline constexpr unsigned setForm = static_cast<unsigned>(EForm::Set);

// The groups of commands, each in a file of its own.
std::span<const SCommandEntry> BasicCommands();
std::span<const SCommandEntry> NetworkCommands();
std::span<const SCommandEntry> MessageCommands();
std::span<const SCommandEntry> TestCommands();

// Runs one command; the reply gets what it answers before the result.
SResult RunCommand(SModem& modem, const SCommand& command, SReply& reply);

// Ends the entry that AT+CMGS began: keeps the message as sent and answers its reference.
SResult SendEnteredMessage(SModem& modem, SReply& reply);

// Calendar time as the modem writes it, "24/05/31,12:00:00+00".
std::string CalendarText(std::int64_t seconds);

// The registration state as +CREG shows it, with area and cell when AT+CREG=2 asked for them.
std::string RegistrationText(const SModem& modem);

} // namespace modemsim
