#include "tools/CommandTable.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

constexpr EErrorKind plain = EErrorKind::Plain;

constexpr SNumberEntry numberEntries[] = {
    {"E", &SModemSettings::echo, 0, 1, plain},
    {"V", &SModemSettings::verbose, 0, 1, plain},
    {"Q", &SModemSettings::quiet, 0, 1, plain},
    {"X", &SModemSettings::progress, 0, 4, plain},
    {"L", &SModemSettings::loudness, 0, 3, plain},
    {"M", &SModemSettings::speaker, 0, 3, plain},
    {"&C", &SModemSettings::carrier, 0, 1, plain},
    {"&D", &SModemSettings::dtr, 0, 3, plain},
    {"&K", &SModemSettings::flowControl, 0, 6, plain},
    {"&S", &SModemSettings::dsr, 0, 1, plain},
    {"+CMEE", &SModemSettings::errorLevel, 0, 2, EErrorKind::Telephone},
    {"+CLIP", &SModemSettings::callerTold, 0, 1, EErrorKind::Telephone},
    {"+IPR", &SModemSettings::speed, 0, 4000000, EErrorKind::Telephone},
    {"+CMGF", &SModemSettings::textMode, 0, 1, EErrorKind::Message},
};

SResult Result(const SOutcome& outcome, EErrorKind kind) {
    return {outcome.code, outcome.failure, kind};
}

std::string Prefixed(std::string_view name, std::string_view text) {
    return std::string(name).append(": ").append(text);
}

SOutcome RunNumber(SModem& modem, const SNumberEntry& entry, const SCommand& command,
                   SReply& reply) {
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
        return SOutcome::Fail(EFailure::NotSupported);
    const std::string text = command.form == EForm::Execute ? "0" : command.parameters.front();
    const auto number = ParseNumber(text, static_cast<std::uint64_t>(entry.high));
    if (!number || command.parameters.size() > 1 || static_cast<int>(*number) < entry.low)
        return SOutcome::Fail(EFailure::BadParameter);
    value = static_cast<int>(*number);
    return {};
}

SOutcome RunEntry(SModem& modem, const SCommandEntry& entry, const SCommand& command,
                  SReply& reply) {
    if (command.form == EForm::Test) {
        if (entry.test.empty())
            return SOutcome::Fail(EFailure::NotSupported);
        if (entry.test != "-")
            reply.lines.push_back(Prefixed(entry.name, entry.test));
        return {};
    }
    if ((entry.forms & static_cast<unsigned>(command.form)) == 0)
        return SOutcome::Fail(EFailure::NotSupported);
    if (entry.needsSim && !modem.profile.sim)
        return SOutcome::Fail(EFailure::NoSim);
    return entry.handler(modem, command, reply);
}

} // namespace

std::int64_t SModem::CalendarSeconds() const {
    return profile.startSeconds + clockOffset + now / 1000;
}

SModemSettings SModem::FactorySettings() const {
    SModemSettings factory;
    factory.echo = profile.echo ? 1 : 0;
    return factory;
}

SResult RunCommand(SModem& modem, const SCommand& command, SReply& reply) {
    const auto* number = std::ranges::find(numberEntries, command.name, &SNumberEntry::name);
    if (number != std::end(numberEntries))
        return Result(RunNumber(modem, *number, command, reply), number->kind);
    for (const auto group :
         {BasicCommands(), NetworkCommands(), MessageCommands(), TestCommands()}) {
        const auto entry = std::ranges::find(group, command.name, &SCommandEntry::name);
        if (entry != group.end())
            return Result(RunEntry(modem, *entry, command, reply), entry->kind);
    }
    const bool extended = command.name.starts_with('+');
    return {EResult::Error, EFailure::NotSupported, extended ? EErrorKind::Telephone : plain};
}

} // namespace modemsim
