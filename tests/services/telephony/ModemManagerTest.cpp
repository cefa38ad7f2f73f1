// Calls on a modem that the modem manager has, with and without one.
#include "platform/Clock.h"
#include "platform/Wait.h"
#include "platform/notify/ModuleNotice.h"
#include "tests/services/telephony/ModemManagerMock.h"
#include "tests/services/telephony/TapiTest.h"
#include "tests/support/PseudoTerminal.h"

#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <sys/file.h>

namespace {

class CModemManagerTest : public CTapiTest {
  protected:
    void SetUp() override {
        CTapiTest::SetUp();
        if (HasFatalFailure() || IsSkipped())
            return;
        s_told.clear();
        platform::SetNoticeListener([](platform::ENotice, LPCSTR text) {
            const std::lock_guard lock(s_mutex);
            s_told += text;
        });
        // The port is found through the link.
        const std::string link = m_folder.GetPath("modem");
        std::filesystem::create_symlink(m_terminal.GetPath(), link);
        NameModems("Modem = " + link + "\nNull = /dev/null\n");
    }
    LONG MakeCall() { return m_client->Call("Modem"); }
    static bool IsGivenBackTo(const CModemManagerMock& manager) {
        return RunUntil([&] { return !manager.HasLetGo(); });
    }
    static bool IsTold(const std::string& text) {
        return RunUntil([&] {
            const std::lock_guard lock(s_mutex);
            return s_told.find(text) != std::string::npos;
        });
    }

    inline static std::mutex s_mutex;
    inline static std::string s_told;
    CPseudoTerminal m_terminal;
    // The manager is this process: as long as it has the slave, it probes the device.
    CDescriptor m_probed = m_terminal.TakeSlave();
    const std::string m_port = std::filesystem::path(m_terminal.GetPath()).filename();
    const CTestBus m_bus;
    // The ways in which a call ends.
    const std::function<void()> m_ends[3] = {
        [this] { EXPECT_GT((*m_client)->LineDrop(FALSE), 0); },
        [this] { EXPECT_EQ((*m_client)->LineClose(), 0); },
        [this] { m_client.reset(); },
    };
};

TEST_F(CModemManagerTest, LetsGoForTheTimeOfTheCall) {
    const CModemManagerMock manager(EManager::LetsGo, m_port);
    for (const auto& end : m_ends) {
        // It closes its port a little later than it answers.
        CDescriptor own(open(m_terminal.GetPath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_EQ(flock(own.Get(), LOCK_EX), 0);
        std::thread closer([&] {
            while (!manager.HasLetGo())
                Sleep(1);
            Sleep(50);
            own.Reset();
        });
        EXPECT_EQ(MakeCall(), 0);
        closer.join();
        // The hold is the call's, whoever has the port.
        const HANDLE port = m_client->GetPort();
        EXPECT_TRUE(manager.HasLetGo());
        end();
        EXPECT_TRUE(IsGivenBackTo(manager));
        EXPECT_TRUE(CloseHandle(port));
        Restart();
    }
}

TEST_F(CModemManagerTest, IsAwaitedWhileItProbes) {
    for (const bool isModem : {true, false}) {
        s_told.clear();
        CModemManagerMock manager(EManager::Probes, m_port);
        m_probed = CDescriptor(open(m_terminal.GetPath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_GT(m_client->Call("Modem", FALSE), 0);
        EXPECT_TRUE(IsTold("ModemManager is probing Modem;"));
        EXPECT_FALSE(manager.WasAsked());
        m_probed.Reset();
        if (isModem)
            manager.TellOfModem();
        EXPECT_TRUE(RunUntil([&] { return m_client->told == "reply 256 "; })) << m_client->told;
        EXPECT_EQ(manager.HasLetGo(), isModem);
        Restart();
    }
}

TEST_F(CModemManagerTest, IsAskedAnewWhenItStartsAgain) {
    m_probed.Reset();
    std::optional<CModemManagerMock> manager(std::in_place, EManager::LetsGo, m_port);
    ASSERT_EQ(MakeCall(), 0);
    for (const EManager behaviour : {EManager::LetsGo, EManager::Probes, EManager::Refuses}) {
        manager.reset();
        manager.emplace(behaviour, m_port);
        EXPECT_TRUE(RunUntil([&] { return manager->WasAsked(); }));
        if (behaviour != EManager::LetsGo)
            manager->TellOfModem();
        EXPECT_TRUE(behaviour == EManager::Refuses ||
                    RunUntil([&] { return manager->HasLetGo(); }));
    }
    for (const char* const text : {"was started again, and may be ", "may use the modem, too: "})
        EXPECT_TRUE(IsTold(std::string("Modem: ModemManager ") + text));
    m_client.reset();
}

TEST_F(CModemManagerTest, IsAskedForWhatItHasAndGetsItBack) {
    m_probed.Reset();
    EXPECT_EQ(MakeCall(), 0) << "without a manager";
    const std::tuple<EManager, std::string, const char*, LONG> rows[] = {
        {EManager::LetsGo, "ttyUSB1", "Modem", 0},
        {EManager::TalksNonsense, m_port, "Modem", 0},
        {EManager::Refuses, m_port, "Modem", LINEERR_INUSE},
        {EManager::LetsGo, "null", "Null", LINEERR_NODRIVER},
    };
    for (const auto& [behaviour, port, modem, status] : rows) {
        const CModemManagerMock manager(behaviour, port);
        Restart();
        EXPECT_EQ(m_client->Call(modem), status);
        EXPECT_EQ(manager.WasAsked(), status != 0) << port;
        EXPECT_TRUE(IsGivenBackTo(manager)) << port;
    }
    EXPECT_TRUE(IsTold("Modem: ModemManager keeps the modem: "));
}

// Each end comes long before the manager's answer, or its probing, would be given up.
TEST_F(CModemManagerTest, CanBeGivenUpWhileItIsAwaited) {
    for (int turn = 0; turn < 6; ++turn) {
        const auto& end = m_ends[turn % 3];
        const EManager behaviour = turn < 3 ? EManager::NeverAnswers : EManager::Probes;
        const CModemManagerMock manager(behaviour, m_port);
        ASSERT_GT(m_client->Call("Modem", FALSE), 0);
        ASSERT_TRUE(RunUntil([&] { return turn < 3 ? manager.WasAsked() : manager.WasListed(); }));
        end();
        EXPECT_TRUE(&end != &m_ends[0] ||
                    RunUntil([&] { return m_client->told.find(" 1 ") != std::string::npos; }));
        Restart();
    }
}

} // namespace
