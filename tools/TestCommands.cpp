// Commands that no real modem has: they let things happen that are otherwise hard to arrange.
#include "tools/CommandTable.h"

#include <algorithm>
#include <iterator>

namespace modemsim {
namespace {

constexpr EErrorKind kTelephone = EErrorKind::Telephone;
constexpr std::uint64_t kLongLineLimit = 100'000'000;

Outcome LongLine(Modem&, const Command& command, Reply& reply) {
    const auto count = ParseNumber(command.parameters.front(), kLongLineLimit);
    if (!count || command.parameters.size() != 1)
        return Outcome::Fail(EFailure::BadParameter);
    reply.longLine = *count;
    return {};
}

Outcome Flood(Modem&, const Command&, Reply& reply) {
    reply.event.kind = EHappening::Flood;
    return {EResult::Pending};
}

struct EventName {
    std::string_view name;
    EHappening kind;
};

constexpr EventName kEventNames[] = {
    {"RING", EHappening::Ring},
    {"MESSAGE", EHappening::Message},
    {"REGISTRATION", EHappening::Registration},
    {"HANGUP", EHappening::FarHangUp},
    {"VANISH", EHappening::Vanish},
    {"SILENCE", EHappening::Silence},
};

Outcome Happen(Modem&, const Command& command, Reply& reply) {
    const auto& parameters = command.parameters;
    const auto* found = std::ranges::find(kEventNames, parameters.front(), &EventName::name);
    if (found == std::end(kEventNames) || parameters.size() > 3)
        return Outcome::Fail(EFailure::BadParameter);
    Event event{found->kind, {}, {}, 0};
    if (parameters.size() > 1)
        event.text = parameters[1];
    if (parameters.size() > 2)
        event.number = parameters[2];
    const bool dialable = event.number.find_first_not_of("+0123456789*#") == std::string::npos;
    if (!dialable)
        return Outcome::Fail(EFailure::BadParameter);
    if (event.kind == EHappening::Registration) {
        const auto state = ParseNumber(event.text, 5);
        if (!state)
            return Outcome::Fail(EFailure::BadParameter);
        event.value = static_cast<int>(*state);
    }
    reply.event = event;
    return {};
}

constexpr CommandEntry kEntries[] = {
    {"+LONG", kSetForm, kTelephone, false, LongLine, "(0-100000000)"},
    {"+FLOOD", kExecuteForm, kTelephone, false, Flood, "-"},
    {"+SIM", kSetForm, kTelephone, false, Happen,
     "(RING,MESSAGE,REGISTRATION,HANGUP,VANISH,SILENCE)"},
};

} // namespace

std::span<const CommandEntry> TestCommands() {
    return kEntries;
}

} // namespace modemsim
