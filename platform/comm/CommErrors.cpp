#include "platform/comm/CommErrors.h"

#include "platform/Comm.h"

namespace platform {
namespace {

struct CounterBit {
    int serial_icounter_struct::*counter;
    DWORD bit;
};

constexpr CounterBit kCounters[] = {
    {&serial_icounter_struct::buf_overrun, CE_RXOVER},
    {&serial_icounter_struct::overrun, CE_OVERRUN},
    {&serial_icounter_struct::parity, CE_RXPARITY},
    {&serial_icounter_struct::frame, CE_FRAME},
    {&serial_icounter_struct::brk, CE_BREAK},
};

} // namespace

DWORD ErrorsBetween(const serial_icounter_struct& before, const serial_icounter_struct& now) {
    DWORD errors = 0;
    for (const CounterBit& row : kCounters) {
        if (before.*row.counter != now.*row.counter)
            errors |= row.bit;
    }
    return errors;
}

} // namespace platform
