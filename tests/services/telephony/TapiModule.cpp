#include "tests/services/telephony/TapiModule.h"

#include "platform/Message.h"
#include "telephony/TapiRecord.h"
#include "tests/support/DeviceNamespace.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>

namespace {

CTapiModule* g_current = nullptr;

constexpr std::chrono::seconds kPatience{45};

struct Caps {
    LINEDEVCAPS record;
    char variable[1000];
};

struct Identifier {
    VARSTRING record;
    char variable[4096];
};

} // namespace

CTapiModule::CTapiModule() {
    g_current = this;
    Restart();
}

CTapiModule::~CTapiModule() {
    Shutdown();
    Unload();
    g_current = nullptr;
}

void CTapiModule::Restart() {
    Shutdown();
    EXPECT_EQ(lineInitialize(&m_hLineApp, nullptr, OnEvent, nullptr, &m_dwDevices), 0);
}

void CTapiModule::Shutdown() {
    EXPECT_TRUE(m_hLineApp == 0 || lineShutdown(m_hLineApp) == 0);
    m_hLineApp = 0;
}

std::vector<std::string> CTapiModule::ListLines() {
    std::vector<std::string> lines;
    for (DWORD device = 0; device < m_dwDevices; ++device) {
        Caps caps{};
        caps.record.dwTotalSize = sizeof caps;
        EXPECT_EQ(lineGetDevCaps(m_hLineApp, device, TAPI_API_VERSION, 0u, &caps.record), 0);
        const bool isModem = (caps.record.dwMediaModes & LINEMEDIAMODE_DATAMODEM) != 0 &&
                             (caps.record.dwBearerModes & LINEBEARERMODE_VOICE) != 0 &&
                             (caps.record.dwLineFeatures & LINEFEATURE_MAKECALL) != 0;
        lines.push_back((isModem ? "*" : "") + std::string(LineNameOf(caps.record).value_or("")));
    }
    return lines;
}

HLINE CTapiModule::OpenLine(const std::string& name, DWORD_PTR instance) {
    const std::vector<std::string> lines = ListLines();
    HLINE hLine = 0;
    const auto found = std::find(lines.begin(), lines.end(), "*" + name);
    EXPECT_EQ(lineOpen(m_hLineApp, static_cast<DWORD>(found - lines.begin()), &hLine,
                       TAPI_API_VERSION, 0u, instance, LINECALLPRIVILEGE_OWNER,
                       LINEMEDIAMODE_DATAMODEM, nullptr),
              0)
        << name;
    return hLine;
}

LONG CTapiModule::StartCall(HLINE hLine, HCALL* hCall) {
    LINECALLPARAMS parameters{};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    return lineMakeCall(hLine, hCall, nullptr, 0u, &parameters);
}

LONG CTapiModule::MakeCall(HLINE hLine, HCALL* hCall) {
    return AwaitReply(StartCall(hLine, hCall));
}

LONG CTapiModule::AwaitReply(LONG request) const {
    if (request <= 0)
        return request;
    const auto number = static_cast<DWORD_PTR>(request);
    if (!RunUntil([&] { return FindEvent(0, LINE_REPLY, number) != nullptr; }))
        return LINEERR_OPERATIONUNAVAIL;
    return static_cast<LONG>(FindEvent(0, LINE_REPLY, number)->parameter2);
}

HANDLE CTapiModule::GetPort(HCALL hCall) {
    Identifier identifier{};
    identifier.record.dwTotalSize = sizeof identifier;
    if (lineGetID(0u, 0u, hCall, LINECALLSELECT_CALL, &identifier.record, "comm/datamodem") != 0)
        return nullptr;
    DWORD number = 0;
    std::memcpy(&number, BytesOf(identifier.record).data(), sizeof number);
    return reinterpret_cast<HANDLE>(std::uintptr_t{number});
}

bool CTapiModule::RunUntil(const std::function<bool()>& condition) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        // Conditions may also be fulfilled by something that posts no message.
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        Dispatch();
    }
    return true;
}

void CTapiModule::Dispatch() {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

const TapiEvent* CTapiModule::FindEvent(DWORD hDevice, DWORD message, DWORD_PTR parameter1) const {
    const auto found = std::ranges::find_if(m_events, [&](const TapiEvent& event) {
        return event.hDevice == hDevice && event.message == message &&
               event.parameter1 == parameter1;
    });
    return found != m_events.end() ? &*found : nullptr;
}

void CTapiModule::OnEvent(DWORD hDevice, DWORD message, DWORD_PTR instance, DWORD_PTR parameter1,
                          DWORD_PTR parameter2, DWORD_PTR) {
    g_current->m_events.push_back({hDevice, message, instance, parameter1, parameter2});
}

void CTapiTest::SetUp() {
    if (const std::string& problem = CDeviceNamespace::Enter(); !problem.empty())
        GTEST_SKIP() << problem;
    CDeviceNamespace::SetInterfaces({});
    std::filesystem::create_directories(m_folder.GetPath("wirelet"));
    setenv("XDG_CONFIG_HOME", m_folder.GetPath("").c_str(), 1);
    m_module.emplace();
    ASSERT_NE(m_module->m_hLineApp, 0U) << "needs the module beside the test program";
}

void CTapiTest::NameModems(const std::string& content) {
    m_folder.Write("wirelet/modems.conf", content);
    m_module->Restart();
}
