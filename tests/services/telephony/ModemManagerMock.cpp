#include "tests/services/telephony/ModemManagerMock.h"

namespace {

constexpr const char* kManager = "org.freedesktop.ModemManager1";
constexpr const char* kModem = "org.freedesktop.ModemManager1.Modem";
constexpr std::string_view kDevice = "/sys/devices/fake";
constexpr std::uint64_t kLook = 10'000; // microseconds from one look at the orders to the next

} // namespace

CTestBus::CTestBus() {
    const std::string address = "unix:path=" + m_folder.GetPath("bus");
    Pipe ready;
    ProcessOptions options;
    options.arguments = {"/usr/bin/dbus-daemon", "--session", "--print-address",
                         "--address=" + address};
    options.output = ready.writer.Get();
    m_daemon.emplace(options);
    ready.writer.Reset();
    char byte = 0;
    EXPECT_EQ(read(ready.reader.Get(), &byte, 1), 1) << "needs the package dbus-daemon";
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
}

CModemManagerMock::CModemManagerMock(EManager behaviour, std::string port)
    : m_behaviour(behaviour), m_port(std::move(port)), m_bKnows(behaviour != EManager::Probes) {
    const auto answer = [](sd_bus_message* message, void* mock, sd_bus_error*) {
        return static_cast<CModemManagerMock*>(mock)->Answer(message);
    };
    EXPECT_GE(sd_bus_open_system(&m_bus), 0);
    EXPECT_GE(sd_bus_request_name(m_bus, kManager, 0), 0);
    EXPECT_GE(sd_bus_add_filter(m_bus, nullptr, answer, this), 0);
    EXPECT_GE(sd_bus_add_match(m_bus, nullptr, "type='signal',member='NameOwnerChanged'", nullptr,
                               nullptr),
              0);
    m_thread = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

CModemManagerMock::~CModemManagerMock() {
    m_thread = {};
    sd_bus_close_unref(m_bus);
}

void CModemManagerMock::Run(const std::stop_token& stop) {
    for (; !stop.stop_requested(); sd_bus_wait(m_bus, kLook)) {
        while (sd_bus_process(m_bus, nullptr) > 0)
            continue;
        if (!m_bTells.exchange(false))
            continue;
        m_bKnows = true;
        EXPECT_GE(sd_bus_emit_signal(m_bus, "/org/freedesktop/ModemManager1",
                                     "org.freedesktop.DBus.ObjectManager", "InterfacesAdded",
                                     "oa{sa{sv}}", "/modem", 0),
                  0);
    }
}

int CModemManagerMock::Answer(sd_bus_message* call) {
    const char *name = nullptr, *before = nullptr, *owner = nullptr;
    if (sd_bus_message_is_method_call(call, nullptr, "GetManagedObjects") > 0)
        return AnswerList(call);
    if (sd_bus_message_is_method_call(call, kManager, "InhibitDevice") > 0)
        return AnswerInhibit(call);
    if (sd_bus_message_is_signal(call, nullptr, "NameOwnerChanged") > 0 &&
        sd_bus_message_read(call, "sss", &name, &before, &owner) > 0 && m_holder == name &&
        owner[0] == '\0')
        m_bLetGo = false;
    return 0;
}

int CModemManagerMock::AnswerList(sd_bus_message* call) {
    m_bListed = true;
    if (!m_bKnows)
        return sd_bus_reply_method_return(call, "a{oa{sa{sv}}}", 0);
    if (m_behaviour == EManager::TalksNonsense)
        return sd_bus_reply_method_return(call, "a{oa{sa{sv}}}", 1, "/modem", 1, kModem, 2,
                                          "Device", "u", 1, "Ports", "s", m_port.c_str());
    return sd_bus_reply_method_return(
        call, "a{oa{sa{sv}}}", 2, "/other", 1, kModem, 2, "Ports", "a(su)", 1, "ttyUSB99", 3,
        "Device", "s", "/sys/devices/other", "/modem", 2, "org.freedesktop.ModemManager1.Voice", 1,
        "Calls", "ao", 0, kModem, 3, "Device", "s", kDevice.data(), "Ports", "a(su)", 2, "wwan0", 2,
        m_port.c_str(), 3, "Model", "s", "M1");
}

int CModemManagerMock::AnswerInhibit(sd_bus_message* call) {
    const char* device = nullptr;
    int isInhibited = 0;
    m_bAsked = true;
    if (sd_bus_message_read(call, "sb", &device, &isInhibited) <= 0 || kDevice != device ||
        isInhibited == 0)
        return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INVALID_ARGS, "not this one");
    if (m_behaviour == EManager::NeverAnswers)
        return 1;
    if (m_behaviour == EManager::Refuses || !m_bKnows)
        return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "not\nallowed");
    m_holder = sd_bus_message_get_sender(call);
    m_bLetGo = true;
    return sd_bus_reply_method_return(call, nullptr);
}
