// What the tests of the telephony wrapper share: the service's state and the trace, fresh for each.
#pragma once

#include "common/InterfacePtr.h"
#include "platform/TaskMemory.h"
#include "telephony/Tapi.h"
#include "tests/telephony/FakeTapi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

    CInterfacePtr<ITapi> m_tapi;
};
