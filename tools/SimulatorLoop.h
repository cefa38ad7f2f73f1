// Carries bytes between the simulated modem and its pseudo-terminal: one loop that waits for the
// device, for notices of its being opened and closed, for signals and for the modem's next
// deadline.
//
// Everything happens on the calling thread. Run() returns on SIGTERM, SIGINT or SIGHUP, when the
// modem vanishes, and, with once, when the device was opened and is closed again.
#pragma once

#include "tools/ModemSimulator.h"
#include "tools/PtyDevice.h"

#include <string>

namespace modemsim {

class CSimulatorLoop {
  public:
    CSimulatorLoop(SimulatorProfile profile, CPtyDevice& device, bool once);

    // Blocks the signals that end the loop, so that none of them ends the process before the link
    // is removed; false with the reason in error when the system refuses. Called before Run().
    bool CatchSignals(std::string& error);

    // False only when waiting itself fails.
    bool Run();

  private:
    enum class EState { Running, Ended };

    bool Wait(short& deviceEvents);
    void ServeDevice(short events);
    void ReadDevice();
    void WriteDevice();
    void FeedModem();
    void Close();
    bool SignalCame() const;
    TimeMs Now() const;
    int Timeout() const;

    CModemSimulator m_Modem;
    CPtyDevice& m_Device;
    platform::CDescriptor m_hSignals;
    std::string m_strPending; // read, but not yet taken by the modem
    bool m_bOnce;
    EState m_eState = EState::Running;
    TimeMs m_tStart;
};

} // namespace modemsim
