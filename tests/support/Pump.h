// The pump: the one loop that moves the bytes of a test's devices, terminals and processes until a
// condition holds. It owns nothing; what is added must outlive it. Everything runs on the test's
// thread.
#pragma once

#include <chrono>
#include <functional>
#include <poll.h>
#include <vector>

class IPollable {
  public:
    virtual ~IPollable() = default;
    // -1 when there is nothing to watch.
    virtual int GetDescriptor() const = 0;
    // The poll events of interest now.
    virtual short GetEvents() const { return POLLIN; }
    virtual void OnReady(short events) = 0;
};

class CPump {
  public:
    // Generous: a machine under load with sanitizers is slow, and no test judges speed.
    static constexpr std::chrono::seconds kPatience{45};

    void Add(IPollable& pollable) { m_pollables.push_back(&pollable); }
    void Remove(IPollable& pollable) { std::erase(m_pollables, &pollable); }

    // True as soon as the condition holds, false when it does not in time.
    bool RunUntil(const std::function<bool()>& condition,
                  std::chrono::milliseconds patience = kPatience);

    // Moves bytes for this long.
    void RunFor(std::chrono::milliseconds time) {
        RunUntil([] { return false; }, time);
    }

  private:
    void Step(std::chrono::milliseconds longest);

    std::vector<IPollable*> m_pollables;
};
