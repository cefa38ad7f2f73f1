// CModemHold: a modem that the system's modem manager leaves alone for a while.
//
// The manager gives it up for as long as the connection lives that asked for it: letting go, or the
// end of the program, gives it back. The thread that has taken a hold keeps it: it asks anew when
// the manager was started again, and when it finds the modem only later.
#pragma once

#include "services/telephony/Cancellation.h"
#include "services/telephony/LineDevice.h"
#include "services/telephony/ManagerBus.h"

#include <optional>
#include <string>

namespace telephonyservice {

enum class EHold {
    NotManaged, // nobody else has the modem, as far as the bus tells
    Left,       // the manager has looked at the device, and does not take it for a modem
    Held,
    Refused, // the user has been told why
    Cancelled,
};

class CModemHold {
  public:
    // Asks the manager, when it runs and has this device as a modem's port, to let go of it, and
    // waits for its answer, as the user may have to be asked for a password. While it is still
    // probing the device, that is awaited first, up to 30 s, and the user told of. Takes less than
    // a minute in all.
    EHold Take(const LineDevice& device, const CCancellation& cancellation);

    // Whether the manager runs, does not know the device, and does not let this user see what it
    // has open: it may be probing the device.
    bool MayBeProbing() const { return m_bUnseen; }

    // Whether there is something to be kept.
    bool CanBeLost() const { return m_manager.has_value(); }

    // Keeps the hold until cancelled, and tells the user when it is lost.
    void Keep(const CCancellation& cancellation);

    // Gives the modem back.
    void Release() { m_manager.reset(); }

  private:
    EHold AwaitProbing(const CCancellation& cancellation);
    bool IsKnown(const CCancellation& cancellation);
    void Ask(BusTime deadline, const CCancellation& cancellation);
    bool AskAnew(const CCancellation& cancellation);
    void TellRefusal(const char* consequence) const;

    LineDevice m_device;
    std::string m_port;    // "ttyUSB0"
    std::string m_modem;   // the manager's name for its device, once known
    std::string m_refusal; // why the last question has no good answer; empty without a manager
    bool m_bUnseen = false;
    bool m_bHeld = false;
    std::optional<CManagerBus> m_manager;
};

} // namespace telephonyservice
