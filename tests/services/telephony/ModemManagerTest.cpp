// Calls on a modem that the modem manager has, with and without one.
#include "tests/services/telephony/ModemManagerMock.h"
#include "tests/services/telephony/TapiModule.h"
#include "tests/support/DeviceNamespace.h"
#include "tests/support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace {

class CModemManagerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(CDeviceNamespace::Enter()) << "needs root or user namespaces";
        CDeviceNamespace::SetInterfaces({});
        std::filesystem::create_directories(m_folder.GetPath("wirelet"));
        // The port is found through the link.
        const std::string link = m_folder.GetPath("modem");
        std::filesystem::create_symlink(m_terminal.GetPath(), link);
        m_folder.Write("wirelet/modems.conf", "Modem = " + link + "\n");
        setenv("XDG_CONFIG_HOME", m_folder.GetPath("").c_str(), 1);
        m_module.emplace();
        m_hLine = m_module->OpenLine("Modem");
    }
    std::string GetPort() const {
        return std::filesystem::path(m_terminal.GetPath()).filename().string();
    }

    CTempFolder m_folder;
    CPseudoTerminal m_terminal;
    std::optional<CTapiModule> m_module;
    HLINE m_hLine = 0;
    HCALL m_hCall = 0;
};

TEST_F(CModemManagerTest, LetsGoForTheTimeOfTheCall) {
    const CTestBus bus;
    const CModemManagerMock manager(EManager::LetsGo, GetPort());
    using End = std::function<void()>;
    for (const End& end :
         {End([&] { m_module->lineDrop(m_hCall, nullptr, 0); }),
          End([&] { m_module->lineClose(m_hLine); }), End([&] { m_module->Shutdown(); })}) {
        ASSERT_EQ(m_module->MakeCall(m_hLine, &m_hCall), 0);
        EXPECT_TRUE(manager.HasLetGo());
        // The hold is the call's, whoever has the port.
        const HANDLE port = m_module->GetPort(m_hCall);
        EXPECT_TRUE(manager.HasLetGo());
        end();
        EXPECT_TRUE(m_module->RunUntil([&] { return !manager.HasLetGo(); }));
        EXPECT_TRUE(CloseHandle(port));
        m_module->Restart();
        m_hLine = m_module->OpenLine("Modem");
    }
}

TEST_F(CModemManagerTest, KeepsTheModem) {
    const CTestBus bus;
    const CModemManagerMock manager(EManager::Refuses, GetPort());
    EXPECT_EQ(m_module->MakeCall(m_hLine, &m_hCall), LINEERR_INUSE);
    EXPECT_TRUE(manager.WasAsked());
    EXPECT_EQ(m_module->lineDeallocateCall(m_hCall), LINEERR_INVALCALLHANDLE);
}

TEST_F(CModemManagerTest, GivesItBackWhenTheDeviceCannotBeOpened) {
    const CTestBus bus;
    const CModemManagerMock manager(EManager::LetsGo, GetPort());
    const HLINE hOther = m_module->OpenLine("Modem");
    HCALL hOtherCall = 0;
    ASSERT_EQ(m_module->MakeCall(hOther, &hOtherCall), 0);
    CloseHandle(m_module->GetPort(hOtherCall));
    m_terminal.CloseMaster();
    EXPECT_EQ(m_module->MakeCall(m_hLine, &m_hCall), LINEERR_NODEVICE);
    EXPECT_EQ(m_module->lineClose(hOther), 0);
    EXPECT_TRUE(m_module->RunUntil([&] { return !manager.HasLetGo(); }));
}

TEST_F(CModemManagerTest, IsNotAskedForWhatItDoesNotHave) {
    const CTestBus bus;
    EXPECT_EQ(m_module->MakeCall(m_hLine, &m_hCall), 0) << "without a manager";
    m_module->Restart();
    for (const EManager behaviour : {EManager::LetsGo, EManager::TalksNonsense}) {
        const bool isNonsense = behaviour == EManager::TalksNonsense;
        const CModemManagerMock manager(behaviour, isNonsense ? GetPort() : "ttyUSB1");
        m_hLine = m_module->OpenLine("Modem");
        EXPECT_EQ(m_module->MakeCall(m_hLine, &m_hCall), 0);
        EXPECT_FALSE(manager.WasAsked());
        m_module->Restart();
    }
}

// Each end comes long before the manager's answer would be given up.
TEST_F(CModemManagerTest, CanBeGivenUpWhileItIsAsked) {
    const CTestBus bus;
    using End = std::function<void()>;
    const End ends[] = {
        [&] {
            EXPECT_GT(m_module->lineDrop(m_hCall, nullptr, 0), 0);
            EXPECT_TRUE(m_module->RunUntil(
                [&] { return m_module->HasEvent(m_hCall, LINE_CALLSTATE, LINECALLSTATE_IDLE); }));
            EXPECT_EQ(m_module->lineDeallocateCall(m_hCall), 0);
        },
        [&] { EXPECT_EQ(m_module->lineClose(m_hLine), 0); },
        [&] { m_module->Shutdown(); },
    };
    for (const End& end : ends) {
        const CModemManagerMock manager(EManager::NeverAnswers, GetPort());
        ASSERT_GT(m_module->StartCall(m_hLine, &m_hCall), 0);
        ASSERT_TRUE(m_module->RunUntil([&] { return manager.WasAsked(); }));
        end();
        m_module->Restart();
        m_hLine = m_module->OpenLine("Modem");
    }
}

} // namespace
