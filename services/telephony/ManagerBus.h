// CManagerBus: the system's modem manager, as the bus lets one speak with it.
//
// One thread at a time uses it. Waits end in time and when they are cancelled.
#pragma once

#include "services/telephony/SystemBus.h"

#include "platform/Types.h"

#include <optional>
#include <string>
#include <utility>

namespace telephonyservice {

class CManagerBus {
  public:
    // Connects, and from now on notices the manager's coming and going and its new modems.
    CManagerBus();

    bool IsThere() const { return m_bus.IsThere(); }

    // The device whose modem has the port ("ttyUSB0"), by the manager's name for it; empty when it
    // has none such. Nothing without an answer; the reason is empty when there is no manager.
    std::optional<std::string> FindDevice(const std::string& port, std::string& reason,
                                          const CCancellation& cancellation) const;

    // The manager's process; 0 when the bus does not tell.
    DWORD FindProcess(const CCancellation& cancellation) const;

    // Asks it to leave the device alone for as long as this object lives. False when it does not;
    // the reason is empty when there is no manager.
    bool Inhibit(const std::string& device, BusTime deadline, std::string& reason,
                 const CCancellation& cancellation) const;

    // Whether it has come or gone, or has got a new modem, since the last question.
    bool TakeOwnerChange() { return std::exchange(m_bOwnerChanged, false); }
    bool TakeNewModem() { return std::exchange(m_bNewModem, false); }

    // As CSystemBus::Wait.
    bool Wait(BusTime deadline, int descriptor, const CCancellation& cancellation) const {
        return m_bus.Wait(deadline, descriptor, cancellation);
    }

  private:
    bool m_bOwnerChanged = false;
    bool m_bNewModem = false;
    const CSystemBus m_bus; // the first to go: it sets the marks
};

} // namespace telephonyservice
