// The manager can only be asked for a modem that it knows, and it knows one only once it has probed
// it. A device that it does not know is therefore watched from two sides: the bus, for a new modem,
// and the manager's process, for whether it has the device open. What both say is looked at again
// after each signal and each opening or closing of the device.
#include "services/telephony/ModemManager.h"

#include "platform/Comm.h"
#include "platform/objects/Descriptor.h"
#include "services/telephony/Notice.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <sys/inotify.h>

namespace telephonyservice {
namespace {

// All in all below the 60 s that a program waits for its call.
constexpr BusTime kTakeTime = 50 * kSecond;
// Of a modem's first probing. A device that answers nothing takes the manager's full patience.
constexpr BusTime kProbeTime = 30 * kSecond;
constexpr BusTime kTellTime = kSecond;
// It closes a port and opens it again between two kinds of questions, and closes it at last before
// it tells of the modem.
constexpr BusTime kSettleTime = 2 * kSecond;

constexpr const char* kShared = "may use the modem, too";

// "ttyUSB0", also for a link to it; empty when the path leads nowhere.
std::string FindPortName(const std::string& devicePath) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(
        realpath(devicePath.c_str(), nullptr), std::free);
    if (!resolved)
        return {};
    const std::string path = resolved.get();
    return path.substr(path.find_last_of('/') + 1);
}

// Readable when anybody opens or closes the device. Without one, waits end by their time.
platform::CDescriptor WatchDevice(const std::string& devicePath) {
    platform::CDescriptor watch(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (watch)
        inotify_add_watch(watch.Get(), devicePath.c_str(), IN_OPEN | IN_CLOSE);
    return watch;
}

void Drain(const platform::CDescriptor& watch) {
    std::array<char, 4096> events;
    while (read(watch.Get(), events.data(), events.size()) > 0)
        continue;
}

} // namespace

EHold CModemHold::Take(const LineDevice& device, const CCancellation& cancellation) {
    const BusTime deadline = GetBusTime() + kTakeTime;
    m_device = device;
    m_port = FindPortName(device.devicePath);
    if (m_port.empty())
        return EHold::NotManaged;
    m_manager.emplace();
    if (!m_manager->IsThere()) {
        Release();
        return EHold::NotManaged;
    }
    EHold hold = EHold::NotManaged;
    if (!IsKnown(cancellation))
        hold = AwaitProbing(cancellation);
    if (!m_modem.empty()) {
        Ask(deadline, cancellation);
        // A manager that has gone meanwhile gives no reason.
        hold = m_bHeld ? EHold::Held : m_refusal.empty() ? EHold::Left : EHold::Refused;
    }
    if (cancellation.IsCancelled())
        return EHold::Cancelled;
    if (!m_refusal.empty())
        TellRefusal(hold == EHold::Refused ? "keeps the modem" : kShared);
    return hold;
}

EHold CModemHold::AwaitProbing(const CCancellation& cancellation) {
    const DWORD manager = m_manager->FindProcess(cancellation);
    const std::string files = "/proc/" + std::to_string(manager) + "/fd";
    m_bUnseen = manager != 0 && access(files.c_str(), R_OK) != 0;
    const platform::CDescriptor watch = WatchDevice(m_device.devicePath);
    if (manager == 0 || !platform::IsDeviceOpenIn(manager, m_device.devicePath))
        return EHold::NotManaged;
    const BusTime start = GetBusTime();
    BusTime settled = kNever;
    bool isTold = false;
    while (!cancellation.IsCancelled()) {
        Drain(watch);
        // Its answer may take seconds, because it awaits its ports in between.
        if (IsKnown(cancellation))
            return EHold::Left;
        const BusTime now = GetBusTime();
        if (platform::IsDeviceOpenIn(manager, m_device.devicePath))
            settled = kNever;
        else
            settled = std::min(settled, now + kSettleTime);
        if (now >= settled)
            return EHold::Left;
        if (now - start >= kProbeTime) {
            m_refusal = "it is still probing it";
            return EHold::Refused;
        }
        if (!isTold && now - start >= kTellTime) {
            TellNews("ModemManager is probing " + m_device.name + "; waiting for up to 30 seconds");
            isTold = true;
        }
        const BusTime next = start + (isTold ? kProbeTime : kTellTime);
        if (!m_manager->Wait(std::min(next, settled), watch.Get(), cancellation))
            return EHold::Left;
    }
    return EHold::Cancelled;
}

// What it is called stays known when the manager does not list it any more.
bool CModemHold::IsKnown(const CCancellation& cancellation) {
    const std::optional<std::string> found = m_manager->FindDevice(m_port, m_refusal, cancellation);
    if (!found || found->empty())
        return false;
    m_modem = *found;
    return true;
}

void CModemHold::Ask(BusTime deadline, const CCancellation& cancellation) {
    m_bHeld = m_manager->Inhibit(m_modem, deadline, m_refusal, cancellation);
}

void CModemHold::Keep(const CCancellation& cancellation) {
    while (!cancellation.IsCancelled()) {
        // Its coming, going or telling may have been noticed while it was asked.
        if (AskAnew(cancellation) || m_manager->Wait(kNever, -1, cancellation))
            continue;
        m_refusal = "the connection to the system bus was lost";
        if (m_bHeld)
            TellRefusal(kShared);
        return;
    }
}

// A manager that has just started does not know the modem yet, and does not let go of it while it
// probes it: it is asked again once it tells of a new modem. What was lost until then is told of.
// False when there was nothing to ask about.
bool CModemHold::AskAnew(const CCancellation& cancellation) {
    const bool isOther = m_manager->TakeOwnerChange();
    const bool isNewModem = m_manager->TakeNewModem();
    if (!isOther && !isNewModem)
        return false;
    if (isOther)
        m_bHeld = false;
    if (m_bHeld || ((!isOther || m_modem.empty()) && !IsKnown(cancellation)))
        return true;
    Ask(GetBusTime() + kTakeTime, cancellation);
    if (!m_bHeld && !m_refusal.empty() && !cancellation.IsCancelled())
        TellRefusal(isOther && !isNewModem ? "was started again, and may be probing the modem"
                                           : kShared);
    return true;
}

void CModemHold::TellRefusal(const char* consequence) const {
    TellNews(m_device.name + ": ModemManager " + consequence + ": " + m_refusal);
}

} // namespace telephonyservice
