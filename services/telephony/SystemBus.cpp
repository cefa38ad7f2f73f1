#include "services/telephony/SystemBus.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <poll.h>

namespace telephonyservice {
namespace {

constexpr std::uint64_t MICROSECONDS_PER_SECOND = 1'000'000;
constexpr std::uint64_t MICROSECONDS_PER_MILLISECOND = 1'000;
constexpr std::uint64_t NANOSECONDS_PER_MICROSECOND = 1'000;

struct SlotUnreferencer {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

int KeepAnswer(sd_bus_message* answer, void* kept, sd_bus_error*) {
    static_cast<MessagePtr*>(kept)->reset(sd_bus_message_ref(answer));
    return 1;
}

// Of the monotonic clock, in microseconds.
std::uint64_t Now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * MICROSECONDS_PER_SECOND +
           static_cast<std::uint64_t>(time.tv_nsec) / NANOSECONDS_PER_MICROSECOND;
}

// From a moment on that clock to a time for poll().
int MillisecondsUntil(std::uint64_t moment) {
    const std::uint64_t now = Now();
    if (moment <= now)
        return 0;
    const std::uint64_t left = (moment - now) / MICROSECONDS_PER_MILLISECOND + 1;
    return static_cast<int>(std::min<std::uint64_t>(left, INT_MAX));
}

} // namespace

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

MessagePtr CSystemBus::Call(sd_bus_message* call, unsigned seconds,
                            const CCancellation& cancellation) const {
    MessagePtr answer;
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(m_bus.get(), &slot, call, KeepAnswer, &answer,
                          seconds * MICROSECONDS_PER_SECOND) < 0)
        return nullptr;
    // Once it is gone, nothing comes into the answer any more.
    const std::unique_ptr<sd_bus_slot, SlotUnreferencer> pending(slot);
    // The call's own time only begins once the bus has let us in, which a bus that hangs never
    // does.
    const std::uint64_t deadline = Now() + seconds * MICROSECONDS_PER_SECOND;
    while (!answer && !cancellation.IsCancelled() && Now() < deadline) {
        const int processed = sd_bus_process(m_bus.get(), nullptr);
        if (processed < 0 || (processed == 0 && !WaitForEvents(cancellation, deadline)))
            break;
    }
    return answer;
}

bool CSystemBus::WaitForEvents(const CCancellation& cancellation, std::uint64_t deadline) const {
    const int events = sd_bus_get_events(m_bus.get());
    std::uint64_t moment = UINT64_MAX;
    if (events < 0 || sd_bus_get_timeout(m_bus.get(), &moment) < 0)
        return false;
    pollfd descriptors[] = {
        {sd_bus_get_fd(m_bus.get()), static_cast<short>(events), 0},
        {cancellation.GetDescriptor(), POLLIN, 0},
    };
    return poll(descriptors, std::size(descriptors),
                MillisecondsUntil(std::min(moment, deadline))) >= 0;
}

} // namespace telephonyservice
