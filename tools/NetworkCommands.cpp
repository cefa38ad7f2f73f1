// Identity of the device and the SIM, the network, the clock and the list of calls.
#include "tools/CommandTable.h"

#include <algorithm>
#include <chrono>
#include <iterator>

namespace modemsim {
namespace {

constexpr EErrorKind kTelephone = EErrorKind::Telephone;

// The numbers belong to ranges set aside for tests: no device or subscriber has them.
struct IdentityLine {
    std::string_view name; // after AT+C or AT+
    std::string_view text;
};
constexpr IdentityLine kIdentityLines[] = {
    {"GMI", "Wirelet"},
    {"GMM", "Simulated GSM modem"},
    {"GSN", "001010123456782"},
    {"IMI", "001010123456789"},
};

Outcome Identity(Modem& modem, const Command& command, Reply& reply) {
    const std::string_view name = std::string_view(command.name).substr(command.name.size() - 3);
    const auto* line = std::ranges::find(kIdentityLines, name, &IdentityLine::name);
    if (line == std::end(kIdentityLines))
        reply.lines.push_back("Revision: " + modem.profile.version);
    else
        reply.lines.emplace_back(line->text);
    return {};
}

Outcome Capabilities(Modem&, const Command&, Reply& reply) {
    reply.lines.emplace_back("+GCAP: +CGSM");
    return {};
}

Outcome Signal(Modem& modem, const Command&, Reply& reply) {
    reply.lines.emplace_back(modem.registration == 1 ? "+CSQ: 18,99" : "+CSQ: 99,99");
    return {};
}

Outcome Pin(Modem&, const Command& command, Reply& reply) {
    // The SIM is open already; there is no code to take.
    if (command.form == EForm::Set)
        return Outcome::Fail(EFailure::NotAllowed);
    reply.lines.emplace_back("+CPIN: READY");
    return {};
}

Outcome Registration(Modem& modem, const Command& command, Reply& reply) {
    int& told = modem.settings.registrationTold;
    if (command.form == EForm::Set) {
        const auto number = ParseNumber(command.parameters.front(), 2);
        if (!number || command.parameters.size() != 1)
            return Outcome::Fail(EFailure::BadParameter);
        told = static_cast<int>(*number);
        return {};
    }
    reply.lines.push_back("+CREG: " + std::to_string(told) + "," + RegistrationText(modem));
    return {};
}

Outcome Operator(Modem& modem, const Command& command, Reply& reply) {
    if (command.form == EForm::Set) {
        const auto mode = ParseNumber(command.parameters.front(), 0);
        return mode ? Outcome{} : Outcome::Fail(EFailure::BadParameter);
    }
    const bool registered = modem.profile.sim && modem.registration == 1;
    reply.lines.emplace_back(registered ? "+COPS: 0,0,\"Simulated Network\"" : "+COPS: 0");
    return {};
}

// "yy/MM/dd,hh:mm:ss" with the zone in quarters of an hour after it.
std::optional<std::int64_t> ParseCalendar(std::string_view text) {
    constexpr std::string_view kShape = "00/00/00,00:00:00";
    if (text.size() != kShape.size() + 3)
        return std::nullopt;
    std::array<unsigned, 7> fields{};
    for (std::size_t field = 0; field < fields.size(); ++field) {
        const auto number = ParseNumber(text.substr(field * 3, 2), 99);
        if (!number)
            return std::nullopt;
        fields[field] = static_cast<unsigned>(*number);
        if (field < 5 && text[field * 3 + 2] != kShape[field * 3 + 2])
            return std::nullopt;
    }
    const char sign = text[kShape.size()];
    using namespace std::chrono;
    const year_month_day date{year{2000 + static_cast<int>(fields[0])}, month{fields[1]},
                              day{fields[2]}};
    const bool valid = (sign == '+' || sign == '-') && date.ok() && fields[3] < 24 &&
                       fields[4] < 60 && fields[5] < 60 && fields[6] <= 96;
    if (!valid)
        return std::nullopt;
    const auto offset = minutes{15 * static_cast<int>(fields[6])} * (sign == '-' ? -1 : 1);
    const auto moment =
        sys_days{date} + hours{fields[3]} + minutes{fields[4]} + seconds{fields[5]} - offset;
    return moment.time_since_epoch() / seconds{1};
}

Outcome Clock(Modem& modem, const Command& command, Reply& reply) {
    if (command.form == EForm::Read) {
        reply.lines.push_back("+CCLK: \"" + CalendarText(modem.CalendarSeconds()) + "\"");
        return {};
    }
    const auto moment = ParseCalendar(command.parameters.front());
    if (!moment || command.parameters.size() != 1)
        return Outcome::Fail(EFailure::BadParameter);
    modem.clockOffset += *moment - modem.CalendarSeconds();
    return {};
}

Outcome Calls(Modem& modem, const Command&, Reply& reply) {
    // Direction, state and kind as +CLCC numbers them.
    struct Shown {
        ECallState state;
        std::string_view line;
    };
    constexpr Shown kShown[] = {
        {ECallState::Ringing, "+CLCC: 1,1,4,1,0"},
        {ECallState::Voice, "+CLCC: 1,0,0,0,0"},
        {ECallState::Escaped, "+CLCC: 1,0,0,1,0"},
    };
    const auto* found = std::ranges::find(kShown, modem.call.State(), &Shown::state);
    if (found != std::end(kShown))
        reply.lines.emplace_back(found->line);
    return {};
}

constexpr std::string_view kOperatorList =
    "(2,\"Simulated Network\",\"SimNet\",\"00101\"),(1,\"Other Network\",\"Other\",\"00102\"),,"
    "(0),(0)";

constexpr CommandEntry kEntries[] = {
    {"+GMI", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+GMM", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+GMR", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+GSN", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+GCAP", kExecuteForm, kTelephone, false, Capabilities, "-"},
    {"+CGMI", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+CGMM", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+CGMR", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+CGSN", kExecuteForm, kTelephone, false, Identity, "-"},
    {"+CIMI", kExecuteForm, kTelephone, true, Identity, "-"},
    {"+CSQ", kExecuteForm, kTelephone, false, Signal, "(0-31,99),(99)"},
    {"+CPIN", kReadForm | kSetForm, kTelephone, true, Pin, "-"},
    {"+CREG", kReadForm | kSetForm, kTelephone, false, Registration, "(0-2)"},
    {"+COPS", kReadForm | kSetForm, kTelephone, false, Operator, kOperatorList},
    {"+CCLK", kReadForm | kSetForm, kTelephone, false, Clock, "-"},
    {"+CLCC", kExecuteForm, kTelephone, false, Calls, "-"},
};

} // namespace

std::string CalendarText(std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds{seconds}};
    const auto midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss time{moment - midnight};
    const auto two = [](auto value) {
        return std::string{static_cast<char>('0' + value / 10 % 10),
                           static_cast<char>('0' + value % 10)};
    };
    return two(static_cast<int>(date.year())) + "/" + two(static_cast<unsigned>(date.month())) +
           "/" + two(static_cast<unsigned>(date.day())) + "," + two(time.hours().count()) + ":" +
           two(time.minutes().count()) + ":" + two(time.seconds().count()) + "+00";
}

std::string RegistrationText(const Modem& modem) {
    // Without a SIM there is no network; area and cell are invented.
    const int state = modem.profile.sim ? modem.registration : 0;
    std::string text = std::to_string(state);
    if (modem.settings.registrationTold == 2 && state == 1)
        text += ",\"00C3\",\"0000A1B2\"";
    return text;
}

std::span<const CommandEntry> NetworkCommands() {
    return kEntries;
}

} // namespace modemsim
