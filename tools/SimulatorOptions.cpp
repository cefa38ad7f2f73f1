#include "tools/SimulatorOptions.h"

#include "tools/CommandLine.h"
#include "tools/MessageStore.h"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace modemsim {
namespace {

constexpr std::uint64_t kLongLineLimit = 100'000'000;
constexpr std::uint64_t kGarbageLimit = 65536;
constexpr std::uint64_t kDelayLimit = 3'600'000; // one hour, in milliseconds
constexpr double kSecondsLimit = 86400;          // one day
constexpr int kUsualMessages = 2;                // a first AT+CMGL has something to list
constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max() / 2;

// Stores one option's value; false when the value is none.
using Store = bool (*)(SimulatorOptions& options, const std::string& value);

struct Option {
    const char* name;
    const char* value; // what --help calls it; null: the option has none
    const char* help;
    Store store;
};

template <class Number>
bool StoreNumber(Number& place, const std::string& text, std::uint64_t low, std::uint64_t high) {
    const auto number = ParseNumber(text, high);
    if (!number || *number < low)
        return false;
    place = static_cast<Number>(*number);
    return true;
}

bool StoreCount(std::optional<std::uint64_t>& place, const std::string& text, std::uint64_t low) {
    place = ParseNumber(text, kAnyNumber);
    return place && *place >= low;
}

bool StoreSeconds(TimeMs& place, const std::string& text) {
    double seconds = 0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, seconds);
    // Written so that a value which is no number fails too.
    const bool valid = failure == std::errc{} && stop == end && seconds >= 0.001;
    if (!valid || seconds > kSecondsLimit)
        return false;
    place = std::llround(seconds * 1000);
    return true;
}

bool StoreDialRule(SimulatorOptions& options, const std::string& text) {
    struct Word {
        std::string_view word;
        EResult result;
    };
    constexpr Word kWords[] = {
        {"CONNECT", EResult::Connect},       {"BUSY", EResult::Busy},
        {"NOANSWER", EResult::NoAnswer},     {"NOCARRIER", EResult::NoCarrier},
        {"NODIALTONE", EResult::NoDialtone}, {"ERROR", EResult::Error},
    };
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        return false;
    const std::string ending = text.substr(0, equals);
    const auto* found =
        std::ranges::find(kWords, std::string_view(text).substr(equals + 1), &Word::word);
    const bool dialable = ending.find_first_not_of("0123456789*#+") == std::string::npos;
    if (found == std::end(kWords) || !dialable)
        return false;
    options.profile.dialRules.push_back({ending, found->result});
    return true;
}

using Options = SimulatorOptions;
using Text = const std::string;

constexpr Option kOptionTable[] = {
    {"link", "PATH", "make a symbolic link to the device, removed at the end",
     [](Options& o, Text& v) {
         o.link = v;
         return !v.empty();
     }},
    {"once", nullptr, "end when the device was opened and is closed again",
     [](Options& o, Text&) { return o.once = true; }},
    {"dial", "ENDING=RESULT",
     "numbers with this ending give CONNECT, BUSY, NOANSWER, NOCARRIER, NODIALTONE or ERROR",
     StoreDialRule},
    {"dial-time", "MS", "milliseconds from ATD to its result (1000)",
     [](Options& o, Text& v) { return StoreNumber(o.profile.dialTime, v, 0, kDelayLimit); }},
    {"hangup-after", "SECONDS", "the far end hangs up so long after CONNECT",
     [](Options& o, Text& v) { return StoreSeconds(o.profile.hangUpAfter, v); }},
    {"no-sim", nullptr, "no SIM is inserted",
     [](Options& o, Text&) { return !(o.profile.sim = false); }},
    {"no-echo", nullptr, "echo is off at the start and after a reset",
     [](Options& o, Text&) { return !(o.profile.echo = false); }},
    {"ring", "SECONDS", "a call rings every so often",
     [](Options& o, Text& v) { return StoreSeconds(o.profile.ringPeriod, v); }},
    {"ring-count", "N", "the caller gives up after N rings in all",
     [](Options& o, Text& v) { return StoreCount(o.profile.ringCount, v, 1); }},
    {"messages", "N", "so many messages are stored at the start (2)",
     [](Options& o, Text& v) {
         return StoreNumber(o.profile.storedMessages, v, 0, CMessageStore::kCapacity);
     }},
    {"cmti", "SECONDS", "a message arrives every so often",
     [](Options& o, Text& v) { return StoreSeconds(o.profile.messagePeriod, v); }},
    {"creg", "SECONDS", "the network is lost or found again every so often",
     [](Options& o, Text& v) { return StoreSeconds(o.profile.registrationPeriod, v); }},
    {"silent", nullptr, "take input and never answer",
     [](Options& o, Text&) { return o.profile.faults.silent = true; }},
    {"silent-after", "N", "the same, once N command lines were answered",
     [](Options& o, Text& v) { return StoreCount(o.profile.faults.silentAfter, v, 0); }},
    {"delay", "MS", "milliseconds to wait before each answer",
     [](Options& o, Text& v) { return StoreNumber(o.profile.faults.delay, v, 0, kDelayLimit); }},
    {"split", nullptr, "write one byte at a time",
     [](Options& o, Text&) { return o.profile.faults.split = true; }},
    {"garbage", "N", "send N random bytes before each answer (to 65536)",
     [](Options& o, Text& v) {
         return StoreNumber(o.profile.faults.garbage, v, 0, kGarbageLimit);
     }},
    {"seed", "N", "seed of the random bytes (1)",
     [](Options& o, Text& v) {
         return StoreNumber(o.profile.faults.seed, v, 0, std::numeric_limits<std::uint32_t>::max());
     }},
    {"long", "N", "send a line of N characters before each final result (to 100000000)",
     [](Options& o, Text& v) {
         return StoreNumber(o.profile.faults.longLine, v, 0, kLongLineLimit);
     }},
    {"vanish-after", "N", "hang up and end once N bytes were sent, echo included",
     [](Options& o, Text& v) { return StoreCount(o.profile.faults.vanishAfter, v, 1); }},
    {"flood", nullptr, "send bytes without a line end, for ever",
     [](Options& o, Text&) { return o.profile.faults.flood = true; }},
    {"help", nullptr, "show this text",
     [](Options& o, Text&) {
         o.purpose = Options::EPurpose::Help;
         return true;
     }},
    {"version", nullptr, "show the version",
     [](Options& o, Text&) {
         o.purpose = Options::EPurpose::Version;
         return true;
     }},
};

constexpr std::size_t kOptionCount = std::size(kOptionTable);

std::array<option, kOptionCount + 1> LongOptions() {
    std::array<option, kOptionCount + 1> list{};
    for (std::size_t place = 0; place < kOptionCount; ++place)
        list[place] = {kOptionTable[place].name,
                       kOptionTable[place].value != nullptr ? required_argument : no_argument,
                       nullptr, static_cast<int>(place)};
    return list;
}

SimulatorOptions& Refuse(SimulatorOptions& options, const std::string& problem) {
    options.purpose = SimulatorOptions::EPurpose::Refuse;
    options.problem = problem;
    return options;
}

} // namespace

SimulatorOptions ParseOptions(int argumentCount, char** arguments) {
    SimulatorOptions options;
    options.profile.storedMessages = kUsualMessages;
    const auto list = LongOptions();
    optind = 0; // getopt begins afresh, its own tables included
    opterr = 0;
    int which = 0;
    while ((which = getopt_long(argumentCount, arguments, ":", list.data(), nullptr)) != -1) {
        if (which == '?' || which == ':') {
            // A short option's letter, since there are none; else the word that getopt just left.
            const std::string given =
                optopt > ' ' ? std::string{'-', static_cast<char>(optopt)} : arguments[optind - 1];
            return Refuse(options,
                          (which == '?' ? "unknown option: " : "a value is missing: ") + given);
        }
        const Option& entry = kOptionTable[static_cast<std::size_t>(which)];
        const std::string value = optarg != nullptr ? optarg : "";
        if (!entry.store(options, value))
            return Refuse(options, std::string("not valid for --") + entry.name + ": " + value);
        if (options.purpose != SimulatorOptions::EPurpose::Run)
            return options;
    }
    if (optind < argumentCount)
        return Refuse(options, std::string("unknown argument: ") + arguments[optind]);
    return options;
}

std::string HelpText() {
    constexpr std::size_t kHelpColumn = 27;
    std::string text =
        "Usage: wirelet-modemsim [OPTION]...\n"
        "Simulates a GSM modem on a pseudo-terminal and prints the device's path.\n\n";
    for (const Option& entry : kOptionTable) {
        std::string line = std::string("  --") + entry.name;
        if (entry.value != nullptr)
            line.append(" ").append(entry.value);
        line.resize(std::max(line.size() + 2, kHelpColumn), ' ');
        text.append(line).append(entry.help).append("\n");
    }
    return text + "\nMS are milliseconds; SECONDS may have decimals (0.001 to 86400).\n"
                  "Numbers that end in 1 connect, in 2 are busy, in 3 do not answer.\n";
}

} // namespace modemsim
