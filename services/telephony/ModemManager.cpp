#include "services/telephony/ModemManager.h"

#include "services/telephony/ManagedModems.h"
#include "services/telephony/Notice.h"

#include <cstdlib>
#include <memory>

namespace telephonyservice {
namespace {

constexpr const char* MANAGER = "org.freedesktop.ModemManager1";
constexpr const char* MANAGER_PATH = "/org/freedesktop/ModemManager1";
constexpr const char* LIST_INTERFACE = "org.freedesktop.DBus.ObjectManager";

// The list is at hand; a manager that does not tell it now has no modem to keep.
constexpr unsigned LIST_SECONDS = 5;
// Below the 60 s that a program waits for its call.
constexpr unsigned INHIBIT_SECONDS = 50;

// "ttyUSB0", also for a link to it; empty when the path leads nowhere.
std::string FindPortName(const std::string& devicePath) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        realpath(devicePath.c_str(), nullptr), std::free);
    if (!resolved)
        return {};
    const std::string path = resolved.get();
    return path.substr(path.find_last_of('/') + 1);
}

std::string FindDevice(const CSystemBus& bus, const std::string& port,
                       const CCancellation& cancellation) {
    const MessagePtr call = bus.NewCall(MANAGER, MANAGER_PATH, LIST_INTERFACE, "GetManagedObjects");
    const MessagePtr answer = call ? bus.Call(call.get(), LIST_SECONDS, cancellation) : nullptr;
    if (!answer || sd_bus_message_is_method_error(answer.get(), nullptr) > 0)
        return {};
    return FindManagedDevice(answer.get(), port);
}

// The answer to the question, null when there is none.
MessagePtr Inhibit(const CSystemBus& bus, const std::string& device,
                   const CCancellation& cancellation) {
    const MessagePtr call = bus.NewCall(MANAGER, MANAGER_PATH, MANAGER, "InhibitDevice");
    if (!call || sd_bus_message_append(call.get(), "sb", device.c_str(), 1) < 0 ||
        sd_bus_message_set_allow_interactive_authorization(call.get(), 1) < 0)
        return nullptr;
    return bus.Call(call.get(), INHIBIT_SECONDS, cancellation);
}

std::string DescribeRefusal(sd_bus_message* answer) {
    const sd_bus_error* const error =
        answer != nullptr ? sd_bus_message_get_error(answer) : nullptr;
    if (error == nullptr)
        return "the connection was lost";
    std::string reason = error->message != nullptr ? error->message : error->name;
    // As Debian configures it, the bus lets root alone ask; its own words do not tell that.
    if (sd_bus_error_has_name(error, SD_BUS_ERROR_ACCESS_DENIED) > 0)
        return "the system bus does not let this user ask for it, root may: " + reason;
    return reason;
}

} // namespace

EHold CModemHold::Take(const std::string& devicePath, const CCancellation& cancellation) {
    const std::string port = FindPortName(devicePath);
    CSystemBus bus;
    if (port.empty() || !bus.IsThere())
        return EHold::NotManaged;
    const std::string device = FindDevice(bus, port, cancellation);
    if (cancellation.IsCancelled())
        return EHold::Cancelled;
    if (device.empty())
        return EHold::NotManaged;
    const MessagePtr answer = Inhibit(bus, device, cancellation);
    if (cancellation.IsCancelled())
        return EHold::Cancelled;
    if (!answer || sd_bus_message_is_method_error(answer.get(), nullptr) > 0) {
        TellNews(devicePath + ": ModemManager keeps the modem: " + DescribeRefusal(answer.get()));
        return EHold::Refused;
    }
    m_bus = std::move(bus);
    return EHold::Held;
}

} // namespace telephonyservice
