// What the tests of the telephony wrapper share: a service that is fresh for each, and what it
// offers.
#pragma once

#include "common/InterfacePtr.h"
#include "platform/TaskMemory.h"
#include "telephony/Tapi.h"
#include "tests/telephony/FakeTapi.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <utility>

// A record that an operation hands out.
template <class Record> struct CResult {
    ~CResult() { CoTaskMemFree(record); }
    operator Record**() { return &record; }
    Record* operator->() const { return record; }
    Record* record = nullptr;
};

// A device that the service offers. What belongs to its kind is its name from the second character
// on.
struct Device {
    std::string name;
    DWORD dwBearerModes = LINEBEARERMODE_VOICE;
    DWORD dwMediaModes = LINEMEDIAMODE_DATAMODEM;
    DWORD dwLineFeatures = LINEFEATURE_MAKECALL;
    DWORD dwNameSize = 0; // instead of the name's own
    DWORD dwNameOffset = sizeof(LINEDEVCAPS);
};

class CTelephonyTest : public testing::Test {
  protected:
    static CInterfacePtr<ITapi> Make() {
        ITapi* tapi = nullptr;
        EXPECT_EQ(CreateTapi(&tapi, nullptr), S_OK);
        return CInterfacePtr<ITapi>(tapi);
    }

    // The service's record since the last call.
    std::string Take() { return std::exchange(m_service.log, {}); }
    void OpenLine(DWORD dwPrivileges = LINECALLPRIVILEGE_OWNER) {
        ASSERT_EQ(m_tapi->LineOpen(0, dwPrivileges, LINEMEDIAMODE_DATAMODEM), 0);
    }
    void MakeCall() {
        OpenLine();
        ASSERT_EQ(m_tapi->LineMakeCall("1", 0, nullptr, TRUE), 0);
        Take();
    }

    void Offer(std::vector<Device> devices) {
        m_service.dwDevices = static_cast<DWORD>(devices.size());
        m_service.fill = [devices](const std::string& call, LPVOID record) {
            unsigned index = 0;
            std::sscanf(call.c_str(), "%*s %*u %u", &index);
            if (call.starts_with("lineGetDevCaps"))
                Fill(devices[index], *static_cast<LINEDEVCAPS*>(record));
            return 0;
        };
    }
    static void Fill(const Device& device, LINEDEVCAPS& caps) {
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
    CFakeTapi m_service;
    CInterfacePtr<ITapi> m_tapi = Make();
};
