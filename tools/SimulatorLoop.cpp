#include "tools/SimulatorLoop.h"

#include <poll.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <utility>

namespace modemsim {
namespace {

constexpr std::size_t kBlockSize = 16384;

// What a pseudo-terminal holds at most, several times over: enough to read all that a closed opener
// left, and an end to it should another one write meanwhile.
constexpr int kLeftoverBlocks = 64;

TimeMs SteadyMilliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

CSimulatorLoop::CSimulatorLoop(SimulatorProfile profile, CPtyDevice& device, bool once)
    : m_Modem(std::move(profile)), m_Device(device), m_bOnce(once), m_tStart(SteadyMilliseconds()) {
}

TimeMs CSimulatorLoop::Now() const {
    return SteadyMilliseconds() - m_tStart;
}

bool CSimulatorLoop::CatchSignals(std::string& error) {
    // A reader of the path that is gone already is an error to report, not a reason to be killed.
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, number);
    if (sigprocmask(SIG_BLOCK, &signals, nullptr) == 0)
        m_hSignals = platform::CDescriptor(signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    if (!m_hSignals)
        error = std::string("cannot watch for signals: ") + std::strerror(errno);
    return static_cast<bool>(m_hSignals);
}

bool CSimulatorLoop::SignalCame() const {
    signalfd_siginfo information{};
    return ::read(m_hSignals.Get(), &information, sizeof information) > 0;
}

int CSimulatorLoop::Timeout() const {
    if (!m_strPending.empty() && m_Modem.AcceptsInput(Now()))
        return 0;
    const std::optional<TimeMs> due = m_Modem.NextDeadline();
    if (!due)
        return -1;
    return static_cast<int>(std::clamp<TimeMs>(*due - Now(), 0, INT_MAX));
}

bool CSimulatorLoop::Run() {
    while (m_eState == EState::Running) {
        m_Modem.Advance(Now());
        if (m_Modem.Vanished(Now())) {
            m_Device.Vanish();
            return true;
        }
        short events = 0;
        if (!Wait(events))
            return false;
        ServeDevice(events);
    }
    return true;
}

bool CSimulatorLoop::Wait(short& deviceEvents) {
    int wanted = 0;
    if (m_strPending.empty() && m_Modem.AcceptsInput(Now()))
        wanted |= POLLIN;
    if (!m_Modem.Output(Now()).empty())
        wanted |= POLLOUT;
    std::array<pollfd, 3> watched = {{{m_Device.Descriptor(), static_cast<short>(wanted), 0},
                                      {m_Device.NoticeDescriptor(), POLLIN, 0},
                                      {m_hSignals.Get(), POLLIN, 0}}};
    if (poll(watched.data(), watched.size(), Timeout()) < 0)
        return errno == EINTR;
    deviceEvents = watched[0].revents;
    if (watched[1].revents != 0 && m_Device.NoticeOpeners())
        m_Modem.SetOpen(true, Now());
    if (watched[2].revents != 0 && SignalCame())
        m_eState = EState::Ended;
    return true;
}

void CSimulatorLoop::ServeDevice(short events) {
    if ((events & POLLIN) != 0 && m_strPending.empty())
        ReadDevice();
    FeedModem();
    if ((events & POLLOUT) != 0)
        WriteDevice();
    if ((events & (POLLHUP | POLLERR)) != 0)
        Close();
}

void CSimulatorLoop::ReadDevice() {
    std::array<char, kBlockSize> block;
    std::size_t count = 0;
    if (m_Device.Read(block.data(), block.size(), count) == CPtyDevice::ETransfer::Done)
        m_strPending.append(block.data(), count);
}

void CSimulatorLoop::FeedModem() {
    if (!m_strPending.empty())
        m_strPending.erase(0, m_Modem.Input(m_strPending, Now()));
}

// One write a turn, so that answers cut into single bytes are single writes.
void CSimulatorLoop::WriteDevice() {
    const std::string_view bytes = m_Modem.Output(Now());
    std::size_t count = 0;
    if (!bytes.empty() && m_Device.Write(bytes, count) == CPtyDevice::ETransfer::Done)
        m_Modem.Consume(count, Now());
}

// What the last opener wrote before it closed the device still counts; there is nobody to answer.
void CSimulatorLoop::Close() {
    for (int block = 0; block < kLeftoverBlocks; ++block) {
        ReadDevice();
        if (m_strPending.empty())
            break;
        while (!m_strPending.empty()) {
            FeedModem();
            m_Modem.DiscardOutput();
        }
    }
    m_Modem.SetOpen(false, Now());
    m_Device.Recover();
    if (m_bOnce)
        m_eState = EState::Ended;
}

} // namespace modemsim
