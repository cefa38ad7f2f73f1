// CSystemBus: a connection of one's own to the system bus, with calls and waits that end in time.
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

// Of the monotonic clock, in microseconds.
using BusTime = std::uint64_t;
inline constexpr BusTime kNever = UINT64_MAX;
inline constexpr BusTime kSecond = 1'000'000;
BusTime GetBusTime();

class CSystemBus {
  public:
    // Without a bus there is no connection; see IsThere.
    CSystemBus();
    CSystemBus(const CSystemBus&) = delete;
    CSystemBus& operator=(const CSystemBus&) = delete;

    // False also once the connection is lost.
    bool IsThere() const { return m_bus && sd_bus_is_open(m_bus.get()) > 0; }

    // A call of a method, still without its arguments, that starts no service. Null when there is
    // no memory.
    MessagePtr NewCall(const char* service, const char* path, const char* interface,
                       const char* method) const;

    // Sends the call and waits for the answer: a reply or an error message. Null when the
    // connection is lost or the waiting was cancelled. After the deadline the answer is an error.
    MessagePtr Call(sd_bus_message* call, BusTime deadline,
                    const CCancellation& cancellation) const;

    // Has signals that match the rule set the mark, which must outlive this object. Does not wait
    // for the bus; false when there is no memory.
    bool Watch(const char* rule, bool& mark) const;

    // Takes in what is there, or waits until something comes, the descriptor (-1: none) is
    // readable, the deadline is reached or the waiting is cancelled. Marks may have been set during
    // a call: who waits looks at them first. False when the connection is lost.
    bool Wait(BusTime deadline, int descriptor, const CCancellation& cancellation) const;

  private:
    struct Closer {
        void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    };

    bool WaitForEvents(BusTime deadline, int descriptor, const CCancellation& cancellation) const;

    std::unique_ptr<sd_bus, Closer> m_bus;
};

} // namespace telephonyservice
