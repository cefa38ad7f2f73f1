#include "tests/support/Pump.h"

#include <algorithm>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

bool CPump::RunUntil(const std::function<bool()>& condition, milliseconds patience) {
    const auto deadline = steady_clock::now() + patience;
    while (!condition()) {
        const auto left = std::chrono::duration_cast<milliseconds>(deadline - steady_clock::now());
        if (left <= milliseconds::zero())
            return false;
        Step(left);
    }
    return true;
}

void CPump::Step(milliseconds longest) {
    std::vector<pollfd> watched;
    std::vector<IPollable*> owners;
    for (IPollable* pollable : m_pollables) {
        const pollfd entry = {pollable->GetDescriptor(), pollable->GetEvents(), 0};
        if (entry.fd < 0 || entry.events == 0)
            continue;
        watched.push_back(entry);
        owners.push_back(pollable);
    }
    // A condition may also depend on what nobody watches, such as a file: look again now and then.
    const auto timeout = std::min(longest, milliseconds(50));
    if (poll(watched.data(), watched.size(), static_cast<int>(timeout.count())) <= 0)
        return;
    for (std::size_t index = 0; index < watched.size(); ++index)
        if (watched[index].revents != 0)
            owners[index]->OnReady(watched[index].revents);
}
