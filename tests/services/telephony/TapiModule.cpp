#include "tests/services/telephony/TapiModule.h"

#include "platform/Message.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <gtest/gtest.h>

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

CTapiModule::CTapiModule() : m_hModule(LoadLibraryA("TAPI32.DLL")) {
    g_current = this;
#define WIRELET_FIND_MEMBER(result, name, parameters)                                              \
    name = reinterpret_cast<decltype(name)>(GetProcAddress(m_hModule, #name));                     \
    EXPECT_NE(name, nullptr) << #name;
    WIRELET_TAPI_FUNCTIONS(WIRELET_FIND_MEMBER)
#undef WIRELET_FIND_MEMBER
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

void CTapiModule::Unload() {
    m_hLineApp = 0;
    EXPECT_TRUE(m_hModule == nullptr || FreeLibrary(m_hModule));
    m_hModule = nullptr;
}

std::vector<std::string> CTapiModule::ListLines() const {
    std::vector<std::string> lines;
    for (DWORD device = 0; device < m_dwDevices; ++device) {
        Caps caps{};
        caps.record.dwTotalSize = sizeof caps;
        EXPECT_EQ(lineGetDevCaps(m_hLineApp, device, TAPI_API_VERSION, 0, &caps.record), 0);
        EXPECT_LE(caps.record.dwNeededSize, sizeof caps);
        const char* const name =
            reinterpret_cast<const char*>(&caps) + caps.record.dwLineNameOffset;
        const bool isModem = (caps.record.dwMediaModes & LINEMEDIAMODE_DATAMODEM) != 0 &&
                             (caps.record.dwBearerModes & LINEBEARERMODE_VOICE) != 0 &&
                             (caps.record.dwLineFeatures & LINEFEATURE_MAKECALL) != 0;
        lines.push_back((isModem ? "*" : "") + std::string(name));
    }
    return lines;
}

HLINE CTapiModule::OpenLine(const std::string& name, DWORD_PTR instance) const {
    const std::vector<std::string> lines = ListLines();
    HLINE hLine = 0;
    const auto found = std::find(lines.begin(), lines.end(), "*" + name);
    EXPECT_EQ(lineOpen(m_hLineApp, static_cast<DWORD>(found - lines.begin()), &hLine,
                       TAPI_API_VERSION, 0, instance, LINECALLPRIVILEGE_OWNER,
                       LINEMEDIAMODE_DATAMODEM, nullptr),
              0)
        << name;
    return hLine;
}

LONG CTapiModule::StartCall(HLINE hLine, HCALL* hCall) const {
    LINECALLPARAMS parameters{};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    return lineMakeCall(hLine, hCall, nullptr, 0, &parameters);
}

LONG CTapiModule::MakeCall(HLINE hLine, HCALL* hCall) {
    const LONG request = StartCall(hLine, hCall);
    return request > 0 ? AwaitReply(request) : request;
}

LONG CTapiModule::AwaitReply(LONG request) {
    const auto number = static_cast<DWORD_PTR>(request);
    EXPECT_TRUE(RunUntil([&] { return HasEvent(0, LINE_REPLY, number); }));
    for (const TapiEvent& event : m_events) {
        if (event.message == LINE_REPLY && event.parameter1 == number)
            return static_cast<LONG>(event.parameter2);
    }
    return LINEERR_OPERATIONUNAVAIL;
}

HANDLE CTapiModule::GetPort(HCALL hCall) const {
    Identifier identifier{};
    identifier.record.dwTotalSize = sizeof identifier;
    if (lineGetID(0, 0, hCall, LINECALLSELECT_CALL, &identifier.record, "comm/datamodem") != 0)
        return nullptr;
    DWORD number = 0;
    std::memcpy(&number,
                reinterpret_cast<const char*>(&identifier) + identifier.record.dwStringOffset,
                sizeof number);
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

bool CTapiModule::HasEvent(DWORD hDevice, DWORD message, DWORD_PTR parameter1) const {
    for (const TapiEvent& event : m_events) {
        if (event.hDevice == hDevice && event.message == message && event.parameter1 == parameter1)
            return true;
    }
    return false;
}

void CTapiModule::OnEvent(DWORD hDevice, DWORD message, DWORD_PTR instance, DWORD_PTR parameter1,
                          DWORD_PTR parameter2, DWORD_PTR) {
    g_current->m_events.push_back({hDevice, message, instance, parameter1, parameter2});
}
