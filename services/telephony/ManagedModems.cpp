// Walks through the answer once, as it comes: enters what may hold the two properties that count,
// and skips all else by its type. Whatever is not of the type that it should be ends the walk.
#include "services/telephony/ManagedModems.h"

namespace telephonyservice {
namespace {

constexpr const char* kModemInterface = "org.freedesktop.ModemManager1.Modem";

struct Modem {
    std::string device;
    bool hasPort = false;
};

// Runs for each entry of an array; false when the message is not as expected.
template <class ReadEntry>
bool ForEachEntry(sd_bus_message* message, const char* entry, const ReadEntry& readEntry) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, entry) <= 0)
        return false;
    // The type code of the entry without its brackets.
    const std::string content(entry + 1, std::string(entry).size() - 2);
    for (;;) {
        const int entered = sd_bus_message_enter_container(
            message, entry[0] == '(' ? SD_BUS_TYPE_STRUCT : SD_BUS_TYPE_DICT_ENTRY,
            content.c_str());
        if (entered == 0)
            break;
        if (entered < 0 || !readEntry() || sd_bus_message_exit_container(message) < 0)
            return false;
    }
    return sd_bus_message_exit_container(message) >= 0;
}

bool ReadPorts(sd_bus_message* message, const std::string& port, bool& hasPort) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, "a(su)") <= 0)
        return false;
    const bool isRead = ForEachEntry(message, "(su)", [&] {
        const char* name = nullptr;
        std::uint32_t type = 0;
        if (sd_bus_message_read(message, "su", &name, &type) <= 0)
            return false;
        hasPort = hasPort || port == name;
        return true;
    });
    return isRead && sd_bus_message_exit_container(message) >= 0;
}

bool ReadProperty(sd_bus_message* message, const std::string& port, Modem& modem) {
    const char* name = nullptr;
    if (sd_bus_message_read(message, "s", &name) <= 0)
        return false;
    const std::string property = name;
    if (property == "Ports")
        return ReadPorts(message, port, modem.hasPort);
    if (property != "Device")
        return sd_bus_message_skip(message, "v") >= 0;
    const char* device = nullptr;
    if (sd_bus_message_read(message, "v", "s", &device) <= 0)
        return false;
    modem.device = device;
    return true;
}

bool ReadInterface(sd_bus_message* message, const std::string& port, Modem& modem) {
    const char* interface = nullptr;
    if (sd_bus_message_read(message, "s", &interface) <= 0)
        return false;
    if (std::string(interface) != kModemInterface)
        return sd_bus_message_skip(message, "a{sv}") >= 0;
    return ForEachEntry(message, "{sv}", [&] { return ReadProperty(message, port, modem); });
}

} // namespace

std::string FindManagedDevice(sd_bus_message* answer, const std::string& port) {
    std::string device;
    ForEachEntry(answer, "{oa{sa{sv}}}", [&] {
        Modem modem;
        const bool isRead =
            sd_bus_message_skip(answer, "o") >= 0 &&
            ForEachEntry(answer, "{sa{sv}}", [&] { return ReadInterface(answer, port, modem); });
        if (isRead && modem.hasPort)
            device = modem.device;
        return isRead;
    });
    return device;
}

} // namespace telephonyservice
