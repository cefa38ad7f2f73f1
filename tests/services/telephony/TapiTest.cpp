#include "tests/services/telephony/TapiTest.h"

#include "platform/Message.h"
#include "platform/TaskMemory.h"
#include "platform/Wait.h"
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"
#include "tests/support/DeviceNamespace.h"

#include <chrono>
#include <cstring>
#include <filesystem>

CClient::CClient() {
    EXPECT_EQ(CreateTapi(m_tapi.Receive(), nullptr), S_OK);
    const auto note = [](DWORD, DWORD message, DWORD_PTR client, DWORD_PTR first, DWORD_PTR,
                         DWORD_PTR) {
        reinterpret_cast<CClient*>(client)->told +=
            (message == LINE_REPLY ? "reply" : std::to_string(first)) + ' ';
    };
    m_tapi->LineSetUserCallback(note, reinterpret_cast<DWORD_PTR>(this));
}

LONG CClient::Call(const std::string& name, BOOL bWait) {
    DWORD device = 0;
    EXPECT_EQ(m_tapi->LineDeviceNameToID(name.c_str(), &device), 0) << name;
    const LONG status = m_tapi->LineOpen(device, LINECALLPRIVILEGE_OWNER, LINEMEDIAMODE_DATAMODEM);
    EXPECT_TRUE(status == 0 || status == E_TAPI_LINEOPEN) << name;
    LINECALLPARAMS parameters{};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    return m_tapi->LineMakeCall(nullptr, 0, &parameters, bWait);
}

HANDLE CClient::GetPort() const {
    VARSTRING* identifier = nullptr;
    if (m_tapi->LineGetID(&identifier, "COMM/datamodem") != 0)
        return nullptr;
    const CTaskMemory<VARSTRING> owner(identifier);
    DWORD number = 0;
    std::memcpy(&number, BytesOf(*identifier).data(), sizeof number);
    return reinterpret_cast<HANDLE>(std::uintptr_t{number});
}

std::vector<std::string> CClient::ListLines() const {
    std::vector<std::string> lines;
    LINEDEVCAPS* caps = nullptr;
    for (DWORD device = 0; m_tapi->LineGetDevCaps(device, &caps) == 0; ++device) {
        const CTaskMemory<LINEDEVCAPS> owner(caps);
        const bool isModem = (caps->dwMediaModes & LINEMEDIAMODE_DATAMODEM) != 0;
        lines.push_back((isModem ? "*" : "") + std::string(LineNameOf(*caps).value_or("")));
    }
    return lines;
}

void CTapiTest::SetUp() {
    if (const std::string& problem = CDeviceNamespace::Enter(); !problem.empty())
        GTEST_SKIP() << problem;
    CDeviceNamespace::SetInterfaces({});
    std::filesystem::create_directories(m_folder.GetPath("wirelet"));
    setenv("XDG_CONFIG_HOME", m_folder.GetPath("").c_str(), 1);
    ASSERT_NE(CVTapi::LoadTapi(), 0) << "needs the module beside the test program";
    m_client.emplace();
}

bool CTapiTest::RunUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(45);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        // Conditions may also be fulfilled by something that posts no message.
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        Dispatch();
    }
    return true;
}

void CTapiTest::Dispatch() {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}
