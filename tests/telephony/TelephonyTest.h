// What the tests of the telephony wrapper share: the service's state and the trace, fresh for each.
#pragma once

#include "common/InterfacePtr.h"
#include "platform/TaskMemory.h"
#include "telephony/Tapi.h"
#include "tests/telephony/FakeTapi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

// A record that an operation hands out.
template <class Record> class CResult {
  public:
    ~CResult() { CoTaskMemFree(m_record); }
    operator Record**() { return &m_record; }
    Record* operator->() const { return m_record; }
    Record* Get() const { return m_record; }

  private:
    // Not null: failures store null.
    Record* m_record = nullptr;
};

// A device that the service offers. What belongs to its kind is its name from the second character
// on.
struct SDevice {
    std::string name;
    DWORD dwBearerModes = LINEBEARERMODE_VOICE;
    DWORD dwMediaModes = LINEMEDIAMODE_DATAMODEM;
    DWORD dwLineFeatures = LINEFEATURE_MAKECALL;
    DWORD dwNameSize = 0; // instead of the name's own
    DWORD dwNameOffset = sizeof(LINEDEVCAPS);
};

class CTelephonyTest : public testing::Test {
  protected:
    void SetUp() override {
        *FakeTapi() = {};
        m_tapi = Make();
        TakeTrace();
    }
    static CInterfacePtr<ITapi> Make() {
        ITapi* tapi = nullptr;
        EXPECT_EQ(CreateTapi(&tapi, nullptr), S_OK);
        return CInterfacePtr<ITapi>(tapi);
    }

    // What was traced, and what the service was asked, since the last call; a line each.
    static std::string TakeTrace() { return Take(FakeTapi()->trace); }
    static std::string TakeCalls() { return Take(FakeTapi()->calls); }
    static std::string Take(std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& line : std::exchange(lines, {}))
            text += line + '\n';
        return text;
    }
    static void Fails(const std::string& function, LONG lStatus) {
        FakeTapi()->results[function] = {lStatus};
    }
    void OpenLine(DWORD dwPrivileges = LINECALLPRIVILEGE_OWNER) {
        ASSERT_EQ(m_tapi->LineOpen(0, dwPrivileges, LINEMEDIAMODE_DATAMODEM), 0);
    }
    void MakeCall() {
        OpenLine();
        ASSERT_EQ(m_tapi->LineMakeCall("1", 0, nullptr, TRUE), 0);
        TakeCalls();
        TakeTrace();
    }

    void Offer(std::vector<SDevice> devices) {
        FakeTapi()->dwDevices = static_cast<DWORD>(devices.size());
        FakeTapi()->fill = [devices](const std::string& call, LPVOID record) {
            unsigned index = 0;
            std::sscanf(call.c_str(), "%*s %*u %u", &index);
            if (call.starts_with("lineGetDevCaps"))
                Fill(devices[index], *static_cast<LINEDEVCAPS*>(record));
            if (call.starts_with("phoneGetDevCaps"))
                Fill(devices[index], *static_cast<PHONECAPS*>(record));
            return 0;
        };
    }
    static void Fill(const SDevice& device, LINEDEVCAPS& caps) {
        const auto size = static_cast<DWORD>(device.name.size());
        caps.dwBearerModes = device.dwBearerModes;
        caps.dwMediaModes = device.dwMediaModes;
        caps.dwLineFeatures = device.dwLineFeatures;
        caps.dwLineNameOffset = device.dwNameOffset;
        caps.dwLineNameSize = device.dwNameSize ? device.dwNameSize : size + 1;
        caps.dwDevSpecificSize = size;
        caps.dwDevSpecificOffset = sizeof caps + 1;
        std::memcpy(&caps + 1, device.name.c_str(), size + 1);
    }
    static void Fill(const SDevice& device, PHONECAPS& caps) {
        caps.dwPhoneNameOffset = sizeof caps;
        caps.dwPhoneNameSize = static_cast<DWORD>(device.name.size());
        std::memcpy(&caps + 1, device.name.data(), device.name.size());
    }

    CInterfacePtr<ITapi> m_tapi;
};
