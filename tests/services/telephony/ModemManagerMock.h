// A bus of a test's own, and on it a modem manager that has one modem.
#pragma once

#include "tests/support/Pipe.h"
#include "tests/support/Process.h"
#include "tests/support/TempFolder.h"

#include <systemd/sd-bus.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>

// The bus that sd_bus_open_system finds, for as long as the object lives.
class CTestBus {
  public:
    CTestBus();
    ~CTestBus() { unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

  private:
    CTempFolder m_folder;
    std::optional<CProcess> m_daemon;
};

enum class EManager {
    LetsGo,
    Refuses,
    NeverAnswers,
    TalksNonsense, // in place of its list
    Probes,        // knows of nothing and refuses, until it tells of the modem; then lets go
};

// Answers on a thread of its own.
class CModemManagerMock {
  public:
    // The port's name is without the folder.
    CModemManagerMock(EManager behaviour, std::string port);
    ~CModemManagerMock();

    // Asked to let go, ever.
    bool WasAsked() const { return m_bAsked; }
    // Asked which modems it has, ever.
    bool WasListed() const { return m_bListed; }
    // Has it tell everybody of its modem.
    void TellOfModem() { m_bTells = true; }
    // Somebody whom it has let have the modem is still on the bus.
    bool HasLetGo() const { return m_bLetGo; }

  private:
    void Run(const std::stop_token& stop);
    int Answer(sd_bus_message* call);
    int AnswerList(sd_bus_message* call);
    int AnswerInhibit(sd_bus_message* call);

    const EManager m_behaviour;
    const std::string m_port;
    sd_bus* m_bus = nullptr;
    std::string m_holder;
    std::atomic<bool> m_bAsked = false;
    std::atomic<bool> m_bLetGo = false;
    std::atomic<bool> m_bListed = false;
    std::atomic<bool> m_bTells = false;
    bool m_bKnows = true;
    std::jthread m_thread;
};
