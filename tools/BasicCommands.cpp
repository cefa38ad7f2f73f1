// The commands of every modem: reset, identity, S-registers, dialling, answering, hanging up.
#include "tools/CommandTable.h"

namespace modemsim {
namespace {

constexpr EErrorKind plain = EErrorKind::Plain;
constexpr unsigned digitForms = executeForm | setForm;

SOutcome Reset(SModem& modem, const SCommand& command, SReply&) {
    if (command.form == EForm::Set && !ParseNumber(command.parameters.front(), 1))
        return SOutcome::Fail(EFailure::BadParameter);
    if (command.name == "Z")
        modem.call.HangUp();
    modem.settings = modem.FactorySettings();
    return {};
}

SOutcome Identity(SModem& modem, const SCommand& command, SReply& reply) {
    const std::string digit = command.form == EForm::Set ? command.parameters.front() : "0";
    const auto which = ParseNumber(digit, 9);
    if (!which)
        return SOutcome::Fail(EFailure::BadParameter);
    const std::string revision = "Revision: " + modem.profile.version;
    if (*which == 0)
        reply.lines = {"Manufacturer: Wirelet", "Model: Simulated GSM modem", revision};
    else if (*which == 3)
        reply.lines = {revision};
    else if (*which == 9)
        reply.lines = {"Simulated GSM modem"};
    return {};
}

// S1 counts rings and belongs to the line.
SOutcome Register(SModem& modem, const SCommand& command, SReply& reply) {
    const auto index = ParseNumber(command.parameters.front(), registerCount - 1);
    if (!index)
        return SOutcome::Fail(EFailure::BadParameter);
    std::uint8_t& value = modem.settings.registers[static_cast<std::size_t>(*index)];
    if (command.form == EForm::Read) {
        const int shown = *index == 1 ? modem.call.Rings() : value;
        const std::string digits = std::to_string(shown);
        reply.lines.push_back(std::string(3 - digits.size(), '0') + digits);
        return {};
    }
    // S3 to S5 are characters of a seven-bit alphabet.
    const bool character = *index >= 3 && *index <= 5;
    const auto number = ParseNumber(command.parameters[1], character ? 127 : 255);
    if (!number || *index == 1)
        return SOutcome::Fail(EFailure::BadParameter);
    value = static_cast<std::uint8_t>(*number);
    return {};
}

bool CallUnderWay(const SModem& modem) {
    const ECallState state = modem.call.State();
    return state != ECallState::Idle && state != ECallState::Ringing;
}

SOutcome Dial(SModem& modem, const SCommand& command, SReply&) {
    const std::string& number = command.parameters.front();
    if (CallUnderWay(modem))
        return SOutcome::Fail(EFailure::NotAllowed);
    if (number.ends_with(';')) {
        modem.call.StartVoice();
        return {};
    }
    EResult outcome = CCall::Outcome(number, modem.profile);
    // Below X3 the modem does not listen for the busy tone, nor below X2 for the dial tone.
    const bool unheard = (outcome == EResult::Busy && modem.settings.progress < 3) ||
                         (outcome == EResult::NoDialtone && modem.settings.progress < 2);
    if (unheard)
        outcome = EResult::NoCarrier;
    modem.call.Dial(outcome, modem.now + modem.profile.dialTime);
    return {EResult::Pending};
}

SOutcome Answer(SModem& modem, const SCommand&, SReply&) {
    if (modem.call.State() != ECallState::Ringing)
        return {EResult::NoCarrier};
    modem.call.Connect(modem.profile.hangUpAfter, modem.now);
    return {EResult::Connect};
}

SOutcome Online(SModem& modem, const SCommand&, SReply&) {
    return {modem.call.Resume(modem.now) ? EResult::Connect : EResult::NoCarrier};
}

SOutcome HangUp(SModem& modem, const SCommand& command, SReply&) {
    if (command.form == EForm::Set && !ParseNumber(command.parameters.front(), 0))
        return SOutcome::Fail(EFailure::BadParameter);
    modem.call.HangUp();
    return {};
}

constexpr SCommandEntry entries[] = {
    {"Z", digitForms, plain, false, Reset, {}},
    {"&F", digitForms, plain, false, Reset, {}},
    {"I", digitForms, plain, false, Identity, {}},
    {"S", readForm | setForm, plain, false, Register, {}},
    {"D", executeForm, plain, false, Dial, {}},
    {"A", executeForm, plain, false, Answer, {}},
    {"O", digitForms, plain, false, Online, {}},
    {"H", digitForms, plain, false, HangUp, {}},
};

} // namespace

std::span<const SCommandEntry> BasicCommands() {
    return entries;
}

} // namespace modemsim
