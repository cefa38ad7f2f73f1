// Calls on a modem that the modem manager has, with and without one.
#include "platform/Clock.h"
#include "tests/services/telephony/ModemManagerMock.h"
#include "tests/services/telephony/TapiModule.h"
#include "tests/support/PseudoTerminal.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>

namespace {

class CModemManagerTest : public CTapiTest {
  protected:
    void SetUp() override {
        CTapiTest::SetUp();
        if (HasFatalFailure() || IsSkipped())
            return;
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

    CPseudoTerminal m_terminal;
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

TEST_F(CModemManagerTest, KeepsTheModem) {
    const CModemManagerMock manager(EManager::Refuses, m_port);
    EXPECT_EQ(MakeCall(), LINEERR_INUSE);
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
    EXPECT_EQ(MakeCall(), 0) << "without a manager";
    for (const EManager behaviour : {EManager::LetsGo, EManager::TalksNonsense}) {
        const bool isNonsense = behaviour == EManager::TalksNonsense;
        const CModemManagerMock manager(behaviour, isNonsense ? m_port : "ttyUSB1");
        Restart();
        EXPECT_EQ(MakeCall(), 0);
        EXPECT_FALSE(manager.WasAsked());
    }
}

// Each end comes long before the manager's answer would be given up.
TEST_F(CModemManagerTest, CanBeGivenUpWhileItIsAsked) {
    for (const auto& end : m_ends) {
        const CModemManagerMock manager(EManager::NeverAnswers, m_port);
        ASSERT_GT(m_module->StartCall(m_hLine, &m_hCall), 0);
        ASSERT_TRUE(m_module->RunUntil([&] { return manager.WasAsked(); }));
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
