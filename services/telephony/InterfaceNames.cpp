// What the database has found out about an interface stands in its tags. One table gives them their
// meaning, for the name and for the question who takes commands; the first one that is there
// counts.
#include "services/telephony/InterfaceNames.h"

#include "services/telephony/PlainText.h"
#include "services/telephony/PortLikeName.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <strings.h>

namespace telephonyservice {
namespace {

constexpr std::size_t kLongestPart = 64; // of a maker, a model, a role
constexpr int kHexadecimal = 16;

struct Tag {
    const char* property;
    const char* role; // empty: tells nothing
    bool takesCommands;
};

// Those that end the question stand first.
constexpr Tag kTags[] = {
    {"ID_MM_DEVICE_IGNORE", "", false},
    {"ID_MM_PORT_IGNORE", "", false},
    {"ID_MM_PORT_TYPE_GPS", "GPS", false},
    {"ID_MM_PORT_TYPE_QCDM", "diagnostics", false},
    {"ID_MM_PORT_TYPE_AUDIO", "audio", false},
    {"ID_MM_PORT_TYPE_XMMRPC", "", false},
    {"ID_MM_PORT_TYPE_AT_PRIMARY", "modem", true},
    {"ID_MM_PORT_TYPE_AT_SECONDARY", "second modem port", true},
    {"ID_MM_PORT_TYPE_AT_PPP", "data", true},
    {"ID_MM_PORT_TYPE_AT_GPS_CONTROL", "GPS control", true},
};

// The protocols of a CDC-ACM interface that are AT commands: ITU-T V.250, PCCA-101 and its annex O,
// GSM 07.07, 3GPP 27.007, TIA CDMA (USB CDC, table 5 of the PSTN subclass).
constexpr int kFirstAtProtocol = 1;
constexpr int kLastAtProtocol = 6;

// -1 for what is no number.
int ParseHexadecimal(std::string_view text) {
    int number = -1;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, kHexadecimal);
    return error == std::errc() && end == text.data() + text.size() ? number : -1;
}

const Tag* FindTag(const SerialInterface& serial) {
    const auto* const found = std::find_if(std::begin(kTags), std::end(kTags), [&](const Tag& tag) {
        return serial.tags.count(tag.property) != 0;
    });
    return found != std::end(kTags) ? found : nullptr;
}

bool TakesCommands(const SerialInterface& serial) {
    if (const Tag* const tag = FindTag(serial))
        return tag->takesCommands;
    if (serial.acmProtocol.empty())
        return true;
    const int protocol = ParseHexadecimal(serial.acmProtocol);
    return protocol >= kFirstAtProtocol && protocol <= kLastAtProtocol;
}

// "\x20" becomes a blank; an escape that is none stays as it is.
std::string Decode(std::string_view text) {
    constexpr std::size_t kEscapeLength = 4;
    std::string decoded;
    while (!text.empty()) {
        const int byte = text.starts_with("\\x") && text.size() >= kEscapeLength
                             ? ParseHexadecimal(text.substr(2, 2))
                             : -1;
        decoded += byte >= 0 ? static_cast<char>(byte) : text.front();
        text.remove_prefix(byte >= 0 ? kEscapeLength : 1);
    }
    return decoded;
}

std::string MakePart(const std::string& known, const std::string& encoded) {
    const std::string text = known.empty() ? Decode(encoded) : known;
    return MakePlainText(Trim(text), kLongestPart);
}

bool BeginsWith(const std::string& text, const std::string& beginning) {
    return strncasecmp(text.c_str(), beginning.c_str(), beginning.size()) == 0;
}

std::string MakeModelName(const SerialInterface& serial) {
    const std::string maker = MakePart(serial.maker, serial.encodedMaker);
    const std::string model = MakePart(serial.model, serial.encodedModel);
    std::string name = maker.empty() || BeginsWith(model, maker) ? model : maker;
    if (name != model && !model.empty())
        name += " " + model;
    if (name.empty())
        return "Serial modem";
    return ReadsAsPort(name) ? "Modem " + name : name;
}

std::string MakeRole(const SerialInterface& serial) {
    const Tag* const tag = FindTag(serial);
    if (tag != nullptr && tag->role[0] != '\0')
        return tag->role;
    std::string role = MakePart(serial.role, "");
    if (!role.empty())
        return role;
    const int number = ParseHexadecimal(serial.number);
    return number >= 0 ? "interface " + std::to_string(number) : "";
}

} // namespace

std::vector<LineDevice> NameInterfaces(std::vector<SerialInterface> interfaces) {
    std::sort(interfaces.begin(), interfaces.end(),
              [](const SerialInterface& a, const SerialInterface& b) {
                  return a.sysfsPath < b.sysfsPath;
              });
    std::map<std::string, int> counts;
    for (const SerialInterface& serial : interfaces)
        ++counts[serial.hardware];
    std::vector<LineDevice> devices;
    for (const SerialInterface& serial : interfaces) {
        std::string name = MakeModelName(serial);
        const std::string role = counts[serial.hardware] > 1 ? MakeRole(serial) : "";
        if (!role.empty())
            name += " (" + role + ")";
        devices.push_back({std::move(name), serial.devicePath, TakesCommands(serial)});
    }
    return devices;
}

} // namespace telephonyservice
