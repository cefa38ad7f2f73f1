// CSystemBus: a connection of one's own to the system bus, with calls that end in time.
//
// One thread at a time uses it. What others answer is hostile; the bus itself bounds its size.
#pragma once

#include "services/telephony/Cancellation.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <memory>
#include <string>

namespace telephonyservice {

struct MessageUnreferencer {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using MessagePtr = std::unique_ptr<sd_bus_message, MessageUnreferencer>;

class CSystemBus {
  public:
    // Without a bus there is no connection; see IsThere.
    CSystemBus();
    CSystemBus(CSystemBus&& other) noexcept = default;
    CSystemBus& operator=(CSystemBus&& other) noexcept = default;

    bool IsThere() const { return m_bus != nullptr; }

    // A call of a method, still without its arguments, that starts no service. Null when there is
    // no memory.
    MessagePtr NewCall(const char* service, const char* path, const char* interface,
                       const char* method) const;

    // Sends the call and waits for the answer: a reply or an error message. Null when the
    // connection is lost or the waiting was cancelled. After the seconds are over the answer is an
    // error.
    MessagePtr Call(sd_bus_message* call, unsigned seconds,
                    const CCancellation& cancellation) const;

  private:
    struct Closer {
        void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    };

    bool WaitForEvents(const CCancellation& cancellation, std::uint64_t deadline) const;

    std::unique_ptr<sd_bus, Closer> m_bus;
};

} // namespace telephonyservice
