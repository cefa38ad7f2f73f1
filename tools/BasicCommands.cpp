// The commands of every modem: reset, identity, S-registers, dialling, answering, hanging up.
#include "tools/CommandTable.h"

namespace modemsim {
namespace {

constexpr EErrorKind kPlain = EErrorKind::Plain;
constexpr unsigned kDigitForms = kExecuteForm | kSetForm;

Outcome Reset(Modem& modem, const Command& command, Reply&) {
    if (command.form == EForm::Set && !ParseNumber(command.parameters.front(), 1))
        return Outcome::Fail(EFailure::BadParameter);
    if (command.name == "Z")
        modem.call.HangUp();
    modem.settings = modem.FactorySettings();
    return {};
}

Outcome Identity(Modem& modem, const Command& command, Reply& reply) {
    const std::string digit = command.form == EForm::Set ? command.parameters.front() : "0";
    const auto which = ParseNumber(digit, 9);
    if (!which)
        return Outcome::Fail(EFailure::BadParameter);
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
Outcome Register(Modem& modem, const Command& command, Reply& reply) {
    const auto index = ParseNumber(command.parameters.front(), kRegisterCount - 1);
    if (!index)
        return Outcome::Fail(EFailure::BadParameter);
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
        return Outcome::Fail(EFailure::BadParameter);
    value = static_cast<std::uint8_t>(*number);
    return {};
}

bool CallUnderWay(const Modem& modem) {
    const ECallState state = modem.call.State();
    return state != ECallState::Idle && state != ECallState::Ringing;
}

Outcome Dial(Modem& modem, const Command& command, Reply&) {
    const std::string& number = command.parameters.front();
    if (CallUnderWay(modem))
        return Outcome::Fail(EFailure::NotAllowed);
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

Outcome Answer(Modem& modem, const Command&, Reply&) {
    if (modem.call.State() != ECallState::Ringing)
        return {EResult::NoCarrier};
    modem.call.Connect(modem.profile.hangUpAfter, modem.now);
    return {EResult::Connect};
}

Outcome Online(Modem& modem, const Command&, Reply&) {
    return {modem.call.Resume(modem.now) ? EResult::Connect : EResult::NoCarrier};
}

Outcome HangUp(Modem& modem, const Command& command, Reply&) {
    if (command.form == EForm::Set && !ParseNumber(command.parameters.front(), 0))
        return Outcome::Fail(EFailure::BadParameter);
    modem.call.HangUp();
    return {};
}

constexpr CommandEntry kEntries[] = {
    {"Z", kDigitForms, kPlain, false, Reset, {}},
    {"&F", kDigitForms, kPlain, false, Reset, {}},
    {"I", kDigitForms, kPlain, false, Identity, {}},
    {"S", kReadForm | kSetForm, kPlain, false, Register, {}},
    {"D", kExecuteForm, kPlain, false, Dial, {}},
    {"A", kExecuteForm, kPlain, false, Answer, {}},
    {"O", kDigitForms, kPlain, false, Online, {}},
    {"H", kDigitForms, kPlain, false, HangUp, {}},
};

} // namespace

std::span<const CommandEntry> BasicCommands() {
    return kEntries;
}

} // namespace modemsim
