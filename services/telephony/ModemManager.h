// CModemHold: a modem that the system's modem manager leaves alone for a while.
//
// The manager gives it up for as long as the connection lives that asked for it: letting go, or the
// end of the program, gives it back. Whoever has the call owns the hold; one thread at a time.
#pragma once

#include "services/telephony/Cancellation.h"
#include "services/telephony/SystemBus.h"

#include <optional>
#include <string>

namespace telephonyservice {

enum class EHold {
    NotManaged, // nobody else has the modem, as far as the bus tells
    Held,
    Refused, // the reason is in the system's log
    Cancelled,
};

class CModemHold {
  public:
    // Asks the manager, when it runs and has this device as a modem's port, to let go of it, and
    // waits for its answer: up to 50 s, as the user may have to be asked for a password.
    EHold Take(const std::string& devicePath, const CCancellation& cancellation);

    // Gives the modem back.
    void Release() { m_bus.reset(); }

  private:
    std::optional<CSystemBus> m_bus;
};

} // namespace telephonyservice
