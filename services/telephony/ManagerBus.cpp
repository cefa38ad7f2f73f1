// Each question is one call with one of three outcomes: an answer, a reason, or nobody there, which
// is an empty reason. Coming and going is noticed by signals, which set marks.
#include "services/telephony/ManagerBus.h"

#include "services/telephony/ManagedModems.h"

namespace telephonyservice {
namespace {

constexpr const char* kManager = "org.freedesktop.ModemManager1";
constexpr const char* kManagerPath = "/org/freedesktop/ModemManager1";
constexpr const char* kListInterface = "org.freedesktop.DBus.ObjectManager";

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

constexpr const char* kOwnerChanged =
    "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
    "arg0='org.freedesktop.ModemManager1'";
constexpr const char* kNewModem =
    "type='signal',path='/org/freedesktop/ModemManager1',"
    "interface='org.freedesktop.DBus.ObjectManager',member='InterfacesAdded'";

// What is at hand is answered at once.
constexpr BusTime kAnswerTime = 5 * kSecond;

bool IsAnswer(const MessagePtr& message) {
    return message && sd_bus_message_is_method_error(message.get(), nullptr) <= 0;
}

// Empty when nobody has the name that was called.
std::string DescribeFailure(const MessagePtr& answer) {
    const sd_bus_error* const error = answer ? sd_bus_message_get_error(answer.get()) : nullptr;
    if (error == nullptr)
        return "the connection was lost";
    if (sd_bus_error_has_name(error, SD_BUS_ERROR_SERVICE_UNKNOWN) > 0 ||
        sd_bus_error_has_name(error, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0)
        return {};
    std::string reason = error->message != nullptr ? error->message : error->name;
    // As Debian configures it, the bus lets root alone ask; its own words do not tell that.
    if (sd_bus_error_has_name(error, SD_BUS_ERROR_ACCESS_DENIED) > 0)
        return "the system bus does not let this user ask for it, root may: " + reason;
    return reason;
}

} // namespace

CManagerBus::CManagerBus() {
    if (!IsThere())
        return;
    m_bus.Watch(kOwnerChanged, m_bOwnerChanged);
    m_bus.Watch(kNewModem, m_bNewModem);
}

std::optional<std::string> CManagerBus::FindDevice(const std::string& port, std::string& reason,
                                                   const CCancellation& cancellation) const {
    const MessagePtr call =
        m_bus.NewCall(kManager, kManagerPath, kListInterface, "GetManagedObjects");
    const MessagePtr answer =
        call ? m_bus.Call(call.get(), GetBusTime() + kAnswerTime, cancellation) : nullptr;
    reason = IsAnswer(answer) ? "" : DescribeFailure(answer);
    if (!IsAnswer(answer))
        return std::nullopt;
    return FindManagedDevice(answer.get(), port);
}

DWORD CManagerBus::FindProcess(const CCancellation& cancellation) const {
    const MessagePtr call = m_bus.NewCall(kBus, kBusPath, kBus, "GetConnectionUnixProcessID");
    if (!call || sd_bus_message_append(call.get(), "s", kManager) < 0)
        return 0;
    const MessagePtr answer = m_bus.Call(call.get(), GetBusTime() + kAnswerTime, cancellation);
    std::uint32_t process = 0;
    return IsAnswer(answer) && sd_bus_message_read(answer.get(), "u", &process) > 0 ? process : 0;
}

bool CManagerBus::Inhibit(const std::string& device, BusTime deadline, std::string& reason,
                          const CCancellation& cancellation) const {
    MessagePtr answer;
    const MessagePtr call = m_bus.NewCall(kManager, kManagerPath, kManager, "InhibitDevice");
    if (call && sd_bus_message_append(call.get(), "sb", device.c_str(), 1) >= 0 &&
        sd_bus_message_set_allow_interactive_authorization(call.get(), 1) >= 0)
        answer = m_bus.Call(call.get(), deadline, cancellation);
    reason = IsAnswer(answer) ? "" : DescribeFailure(answer);
    return IsAnswer(answer);
}

} // namespace telephonyservice
