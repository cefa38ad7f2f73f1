// Commands that no real modem has: they let things happen that are otherwise hard to arrange.
#include "tools/CommandTable.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

constexpr EErrorKind telephone = EErrorKind::Telephone;
constexpr std::uint64_t longLineLimit = 100'000'000;

SOutcome LongLine(SModem&, const SCommand& command, SReply& reply) {
    const auto count = ParseNumber(command.parameters.front(), longLineLimit);
    if (!count || command.parameters.size() != 1)
        return SOutcome::Fail(EFailure::BadParameter);
    reply.longLine = *count;
    return {};
}

SOutcome Flood(SModem&, const SCommand&, SReply& reply) {
    reply.event.kind = EHappening::Flood;
    return {EResult::Pending};
}

struct SEventName {
    std::string_view name;
    EHappening kind;
};

constexpr SEventName eventNames[] = {
    {"RING", EHappening::Ring},
    {"MESSAGE", EHappening::Message},
    {"REGISTRATION", EHappening::Registration},
    {"HANGUP", EHappening::FarHangUp},
    {"VANISH", EHappening::Vanish},
    {"SILENCE", EHappening::Silence},
};

SOutcome Happen(SModem&, const SCommand& command, SReply& reply) {
    const auto& parameters = command.parameters;
    const auto* found = std::ranges::find(eventNames, parameters.front(), &SEventName::name);
    if (found == std::end(eventNames) || parameters.size() > 3)
        return SOutcome::Fail(EFailure::BadParameter);
    SEvent event{found->kind, {}, {}, 0};
    if (parameters.size() > 1)
        event.text = parameters[1];
    if (parameters.size() > 2)
        event.number = parameters[2];
    const bool dialable = event.number.find_first_not_of("+0123456789*#") == std::string::npos;
    if (!dialable)
        return SOutcome::Fail(EFailure::BadParameter);
    if (event.kind == EHappening::Registration) {
        const auto state = ParseNumber(event.text, 5);
        if (!state)
            return SOutcome::Fail(EFailure::BadParameter);
        event.value = static_cast<int>(*state);
    }
    reply.event = event;
    return {};
}

constexpr SCommandEntry entries[] = {
    {"+LONG", setForm, telephone, false, LongLine, "(0-100000000)"},
    {"+FLOOD", executeForm, telephone, false, Flood, "-"},
    {"+SIM", setForm, telephone, false, Happen,
     "(RING,MESSAGE,REGISTRATION,HANGUP,VANISH,SILENCE)"},
};

} // namespace

std::span<const SCommandEntry> TestCommands() {
    return entries;
}

} // namespace modemsim
