// Calls on a modem that the modem manager has, with and without one.
#include "platform/Clock.h"
#include "platform/notify/ModuleNotice.h"
#include "tests/services/telephony/ModemManagerMock.h"
#include "tests/services/telephony/TapiModule.h"
#include "tests/support/PseudoTerminal.h"

#include <csignal>
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
        NameModem(link);
    }
    void NameModem(const std::string& path) {
        NameModems("Modem = " + path + "\n");
        m_hLine = m_module->OpenLine("Modem");
    }
    void Restart() {
        m_module->Restart();
        m_hLine = m_module->OpenLine("Modem");
    }
    LONG MakeCall() { return m_module->MakeCall(m_hLine, &m_hCall); }
    bool IsGivenBackTo(const CModemManagerMock& manager) {
        return m_module->RunUntil([&] { return !manager.HasLetGo(); });
    }

    bool IsTold(const std::string& text) {
        return m_module->RunUntil([&] {
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
    HLINE m_hLine = 0;
    HCALL m_hCall = 0;
    // The ways in which a call ends.
    const std::function<void()> m_ends[3] = {
        [this] { EXPECT_GT(m_module->lineDrop(m_hCall, nullptr, 0u), 0); },
        [this] { EXPECT_EQ(m_module->lineClose(m_hLine), 0); },
        [this] { m_module->Shutdown(); },
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
        const HANDLE port = m_module->GetPort(m_hCall);
        EXPECT_TRUE(manager.HasLetGo());
        end();
        EXPECT_TRUE(IsGivenBackTo(manager));
        EXPECT_TRUE(CloseHandle(port));
        Restart();
    }
}

TEST_F(CModemManagerTest, GetsTheModemBackWhenTheProgramDies) {
    Pipe told;
    Pipe order;
    ProcessOptions options;
    options.input = order.reader.Get();
    options.output = told.writer.Get();
    options.work = [&] {
        char byte = 0;
        if (read(STDIN_FILENO, &byte, 1) == 1 && MakeCall() == 0)
            static_cast<void>(!write(STDOUT_FILENO, "c", 1));
        pause();
    };
    const CProcess program(options); // before the manager's thread: it has only its own
    const CModemManagerMock manager(EManager::LetsGo, m_port);
    char byte = 0;
    ASSERT_EQ(write(order.writer.Get(), "c", 1), 1);
    ASSERT_EQ(read(told.reader.Get(), &byte, 1), 1);
    EXPECT_TRUE(manager.HasLetGo());
    program.Kill(SIGKILL);
    EXPECT_TRUE(IsGivenBackTo(manager));
    EXPECT_EQ(MakeCall(), 0);
}

TEST_F(CModemManagerTest, IsAwaitedWhileItProbes) {
    for (const bool isModem : {true, false}) {
        s_told.clear();
        CModemManagerMock manager(EManager::Probes, m_port);
        m_probed = CDescriptor(open(m_terminal.GetPath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        const LONG request = m_module->StartCall(m_hLine, &m_hCall);
        EXPECT_TRUE(IsTold("ModemManager is probing Modem;"));
        EXPECT_FALSE(manager.WasAsked());
        m_probed.Reset();
        if (isModem)
            manager.TellOfModem();
        EXPECT_EQ(m_module->AwaitReply(request), 0);
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
        EXPECT_TRUE(m_module->RunUntil([&] { return manager->WasAsked(); }));
        if (behaviour != EManager::LetsGo)
            manager->TellOfModem();
        EXPECT_TRUE(behaviour == EManager::Refuses ||
                    m_module->RunUntil([&] { return manager->HasLetGo(); }));
    }
    for (const char* const text : {"was started again, and may be ", "may use the modem, too: "})
        EXPECT_TRUE(IsTold(std::string("Modem: ModemManager ") + text));
    m_module->Shutdown();
}

TEST_F(CModemManagerTest, KeepsTheModem) {
    const CModemManagerMock manager(EManager::Refuses, m_port);
    EXPECT_EQ(MakeCall(), LINEERR_INUSE);
    EXPECT_TRUE(IsTold("Modem: ModemManager keeps the modem: "));
    EXPECT_TRUE(manager.WasAsked());
    EXPECT_EQ(m_module->lineDeallocateCall(m_hCall), LINEERR_INVALCALLHANDLE);
}

TEST_F(CModemManagerTest, GetsItBackWhenTheDeviceCannotBeOpened) {
    const CModemManagerMock manager(EManager::LetsGo, "null");
    NameModem("/dev/null");
    EXPECT_EQ(MakeCall(), LINEERR_NODRIVER);
    EXPECT_TRUE(manager.WasAsked());
    EXPECT_TRUE(IsGivenBackTo(manager));
}

TEST_F(CModemManagerTest, IsNotAskedForWhatItDoesNotHave) {
    m_probed.Reset();
    EXPECT_EQ(MakeCall(), 0) << "without a manager";
    for (const EManager behaviour : {EManager::LetsGo, EManager::TalksNonsense}) {
        const bool isNonsense = behaviour == EManager::TalksNonsense;
        const CModemManagerMock manager(behaviour, isNonsense ? m_port : "ttyUSB1");
        Restart();
        EXPECT_EQ(MakeCall(), 0);
        EXPECT_FALSE(manager.WasAsked());
    }
}

// Each end comes long before the manager's answer, or its probing, would be given up.
TEST_F(CModemManagerTest, CanBeGivenUpWhileItIsAwaited) {
    for (int turn = 0; turn < 6; ++turn) {
        const auto& end = m_ends[turn % 3];
        const EManager behaviour = turn < 3 ? EManager::NeverAnswers : EManager::Probes;
        const CModemManagerMock manager(behaviour, m_port);
        ASSERT_GT(m_module->StartCall(m_hLine, &m_hCall), 0);
        ASSERT_TRUE(m_module->RunUntil(
            [&] { return turn < 3 ? manager.WasAsked() : manager.WasListed(); }));
        end();
        if (&end == &m_ends[0]) {
            EXPECT_TRUE(m_module->RunUntil(
                [&] { return m_module->FindEvent(m_hCall, LINE_CALLSTATE, LINECALLSTATE_IDLE); }));
            EXPECT_EQ(m_module->lineDeallocateCall(m_hCall), 0);
        }
        Restart();
    }
}

} // namespace
