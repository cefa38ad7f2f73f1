// The library is driven by hand: what is there is processed, and then its descriptor is awaited
// together with the cancellation and, perhaps, one of the caller. A call is sent without waiting,
// so that awaiting its answer ends like any other wait.
#include "services/telephony/SystemBus.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <poll.h>

namespace telephonyservice {
namespace {

constexpr BusTime kMicrosecondsPerMillisecond = 1'000;
constexpr BusTime kNanosecondsPerMicrosecond = 1'000;

struct SlotUnreferencer {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

int KeepAnswer(sd_bus_message* answer, void* kept, sd_bus_error*) {
    static_cast<MessagePtr*>(kept)->reset(sd_bus_message_ref(answer));
    return 1;
}

int SetMark(sd_bus_message*, void* mark, sd_bus_error*) {
    *static_cast<bool*>(mark) = true;
    return 0;
}

// Without one the library would give the connection up.
int IgnoreRefusal(sd_bus_message*, void*, sd_bus_error*) {
    return 0;
}

// From a moment on that clock to a time for poll().
int MillisecondsUntil(BusTime moment) {
    const BusTime now = GetBusTime();
    if (moment == kNever)
        return -1;
    if (moment <= now)
        return 0;
    const BusTime left = (moment - now) / kMicrosecondsPerMillisecond + 1;
    return static_cast<int>(std::min<BusTime>(left, INT_MAX));
}

} // namespace

BusTime GetBusTime() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<BusTime>(time.tv_sec) * kSecond +
           static_cast<BusTime>(time.tv_nsec) / kNanosecondsPerMicrosecond;
}

CSystemBus::CSystemBus() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) >= 0)
        m_bus.reset(bus);
}

MessagePtr CSystemBus::NewCall(const char* service, const char* path, const char* interface,
                               const char* method) const {
    sd_bus_message* call = nullptr;
    if (sd_bus_message_new_method_call(m_bus.get(), &call, service, path, interface, method) < 0)
        return nullptr;
    MessagePtr owned(call);
    return sd_bus_message_set_auto_start(call, 0) < 0 ? nullptr : std::move(owned);
}

MessagePtr CSystemBus::Call(sd_bus_message* call, BusTime deadline,
                            const CCancellation& cancellation) const {
    MessagePtr answer;
    sd_bus_slot* slot = nullptr;
    const BusTime now = GetBusTime();
    if (now >= deadline ||
        sd_bus_call_async(m_bus.get(), &slot, call, KeepAnswer, &answer, deadline - now) < 0)
        return nullptr;
    // Once it is gone, nothing comes into the answer any more.
    const std::unique_ptr<sd_bus_slot, SlotUnreferencer> pending(slot);
    // The call's own time only begins once the bus has let us in, which a bus that hangs never
    // does.
    while (!answer && !cancellation.IsCancelled() && GetBusTime() < deadline) {
        if (!Wait(deadline, -1, cancellation))
            break;
    }
    return answer;
}

bool CSystemBus::Watch(const char* rule, bool& mark) const {
    return sd_bus_add_match_async(m_bus.get(), nullptr, rule, SetMark, IgnoreRefusal, &mark) >= 0;
}

bool CSystemBus::Wait(BusTime deadline, int descriptor, const CCancellation& cancellation) const {
    const int processed = sd_bus_process(m_bus.get(), nullptr);
    return processed == 0 ? WaitForEvents(deadline, descriptor, cancellation) : processed > 0;
}

bool CSystemBus::WaitForEvents(BusTime deadline, int descriptor,
                               const CCancellation& cancellation) const {
    const int events = sd_bus_get_events(m_bus.get());
    BusTime moment = kNever;
    if (events < 0 || sd_bus_get_timeout(m_bus.get(), &moment) < 0)
        return false;
    if (cancellation.GetDescriptor() < 0)
        deadline = std::min(deadline, GetBusTime() + kSecond);
    pollfd descriptors[] = {
        {sd_bus_get_fd(m_bus.get()), static_cast<short>(events), 0},
        {cancellation.GetDescriptor(), POLLIN, 0},
        {descriptor, POLLIN, 0},
    };
    return poll(descriptors, std::size(descriptors),
                MillisecondsUntil(std::min(moment, deadline))) >= 0;
}

} // namespace telephonyservice
