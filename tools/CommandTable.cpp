#include "tools/CommandTable.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

constexpr EErrorKind kPlain = EErrorKind::Plain;

constexpr NumberEntry kNumberEntries[] = {
    {"E", &ModemSettings::echo, 0, 1, kPlain},
    {"V", &ModemSettings::verbose, 0, 1, kPlain},
    {"Q", &ModemSettings::quiet, 0, 1, kPlain},
    {"X", &ModemSettings::progress, 0, 4, kPlain},
    {"L", &ModemSettings::loudness, 0, 3, kPlain},
    {"M", &ModemSettings::speaker, 0, 3, kPlain},
    {"&C", &ModemSettings::carrier, 0, 1, kPlain},
    {"&D", &ModemSettings::dtr, 0, 3, kPlain},
    {"&K", &ModemSettings::flowControl, 0, 6, kPlain},
    {"&S", &ModemSettings::dsr, 0, 1, kPlain},
    {"+CMEE", &ModemSettings::errorLevel, 0, 2, EErrorKind::Telephone},
    {"+CLIP", &ModemSettings::callerTold, 0, 1, EErrorKind::Telephone},
    {"+IPR", &ModemSettings::speed, 0, 4000000, EErrorKind::Telephone},
    {"+CMGF", &ModemSettings::textMode, 0, 1, EErrorKind::Message},
};

FinalResult ResultOf(const Outcome& outcome, EErrorKind kind) {
    return {outcome.code, outcome.failure, kind};
}

std::string Prefixed(std::string_view name, std::string_view text) {
    return std::string(name).append(": ").append(text);
}

Outcome RunNumber(Modem& modem, const NumberEntry& entry, const Command& command, Reply& reply) {
    int& value = modem.settings.*entry.value;
    if (command.form == EForm::Read) {
        reply.lines.push_back(Prefixed(entry.name, std::to_string(value)));
        return {};
    }
    if (command.form == EForm::Test) {
        const std::string range =
            "(" + std::to_string(entry.low) + "-" + std::to_string(entry.high) + ")";
        reply.lines.push_back(Prefixed(entry.name, range));
        return {};
    }
    // A basic command without its digit means 0; an extended one needs its value.
    const bool basic = !entry.name.starts_with('+');
    if (command.form == EForm::Execute && !basic)
        return Outcome::Fail(EFailure::NotSupported);
    const std::string text = command.form == EForm::Execute ? "0" : command.parameters.front();
    const auto number = ParseNumber(text, static_cast<std::uint64_t>(entry.high));
    if (!number || command.parameters.size() > 1 || static_cast<int>(*number) < entry.low)
        return Outcome::Fail(EFailure::BadParameter);
    value = static_cast<int>(*number);
    return {};
}

Outcome RunEntry(Modem& modem, const CommandEntry& entry, const Command& command, Reply& reply) {
    if (command.form == EForm::Test) {
        if (entry.test.empty())
            return Outcome::Fail(EFailure::NotSupported);
        if (entry.test != "-")
            reply.lines.push_back(Prefixed(entry.name, entry.test));
        return {};
    }
    if ((entry.forms & static_cast<unsigned>(command.form)) == 0)
        return Outcome::Fail(EFailure::NotSupported);
    if (entry.needsSim && !modem.profile.sim)
        return Outcome::Fail(EFailure::NoSim);
    return entry.handler(modem, command, reply);
}

} // namespace

std::int64_t Modem::CalendarSeconds() const {
    return profile.startSeconds + clockOffset + now / 1000;
}

ModemSettings Modem::FactorySettings() const {
    ModemSettings factory;
    factory.echo = profile.echo ? 1 : 0;
    return factory;
}

FinalResult RunCommand(Modem& modem, const Command& command, Reply& reply) {
    const auto* number = std::ranges::find(kNumberEntries, command.name, &NumberEntry::name);
    if (number != std::end(kNumberEntries))
        return ResultOf(RunNumber(modem, *number, command, reply), number->kind);
    for (const auto group :
         {BasicCommands(), NetworkCommands(), MessageCommands(), TestCommands()}) {
        const auto entry = std::ranges::find(group, command.name, &CommandEntry::name);
        if (entry != group.end())
            return ResultOf(RunEntry(modem, *entry, command, reply), entry->kind);
    }
    const bool extended = command.name.starts_with('+');
    return {EResult::Error, EFailure::NotSupported, extended ? EErrorKind::Telephone : kPlain};
}

} // namespace modemsim
