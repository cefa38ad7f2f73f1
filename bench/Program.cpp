// The whole program beside the copy loop, and with its log beside itself without one, each pair in
// one run: bytes from the device to the screen. The ratio is the figure to compare; bytes per
// second depend on the machine and its load.

#include "bench/Payload.h"
#include "tests/support/Process.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <string_view>

namespace {

constexpr std::size_t kPayload = std::size_t{4} << 20;
// What is logged is cut unless something is sent now and then, and is six times as long.
constexpr std::size_t kLoggedPayload = std::size_t{1} << 20;
constexpr std::size_t kShownPerKey = 2000;
constexpr int kPatience = 10000; // milliseconds without a byte after which a program has failed

using Seconds = std::chrono::duration<double>;

// One program between a device and a screen, both played by this process.
class CStation {
  public:
    explicit CStation(const char* program, const std::string& option = "")
        : m_process(Options(program, option)) {
        Send("ready?\r\n");
        Await("ready?");
    }

    // From now on a key is typed each time that this many bytes have been shown.
    void TypeEvery(std::size_t shownBytes) { m_nShownPerKey = shownBytes; }

    // The time from the first byte sent to the last one shown.
    double Pass(const std::string& payload) {
        std::array<char, 32> mark;
        std::snprintf(mark.data(), mark.size(), "end-of-pass-%06d", ++m_nPass);
        const auto start = std::chrono::steady_clock::now();
        Send(payload + mark.data() + "\r\n");
        Await(mark.data());
        return Seconds(std::chrono::steady_clock::now() - start).count();
    }

  private:
    ProcessOptions Options(const char* program, const std::string& option) {
        m_screen.SetSize(25, 80);
        termios settings = m_device.GetSettings();
        cfmakeraw(&settings);
        m_device.ApplySettings(settings);
        std::vector<std::string> arguments = {program, m_device.GetPath()};
        if (!option.empty())
            arguments.push_back(option);
        return {arguments,           {"TERM=xterm-256color", "LANG=C.UTF-8"},
                m_screen.GetSlave(), m_screen.GetSlave(),
                m_screen.GetSlave(), m_screen.GetPath()};
    }

    // What was sent before has arrived.
    void Send(std::string bytes) {
        m_sent = std::move(bytes);
        m_unsent = m_sent;
    }

    void Await(const std::string& mark) {
        std::string seen;
        while (seen.find(mark) == std::string::npos) {
            std::array<pollfd, 2> sides = {
                pollfd{m_screen.GetMaster(), POLLIN, 0},
                pollfd{m_device.GetMaster(),
                       static_cast<short>(m_unsent.empty() ? POLLIN : POLLIN | POLLOUT), 0}};
            if (poll(sides.data(), sides.size(), kPatience) <= 0) {
                std::fprintf(stderr, "a program shows nothing any more\n");
                std::exit(1);
            }
            if ((sides[0].revents & POLLIN) != 0) {
                const std::string shown = m_screen.Read(65536);
                seen = seen.substr(seen.size() - std::min(seen.size(), mark.size())) + shown;
                TypeAfter(shown.size());
            }
            if ((sides[1].revents & POLLIN) != 0)
                m_device.Read(65536);
            if ((sides[1].revents & POLLOUT) != 0)
                m_unsent.remove_prefix(m_device.Write(m_unsent));
        }
    }

    void TypeAfter(std::size_t shown) {
        m_nShown += shown;
        if (m_nShownPerKey == 0 || m_nShown < m_nShownPerKey)
            return;
        m_nShown = 0;
        m_screen.Write("k");
    }

    CPseudoTerminal m_device;
    CPseudoTerminal m_screen;
    CProcess m_process;
    std::string m_sent;
    std::string_view m_unsent; // what is left of it
    std::size_t m_nShownPerKey = 0;
    std::size_t m_nShown = 0;
    int m_nPass = 0;
};

// Passes the bytes through both by turns; the counter is the throughput of the one that is
// measured, in parts of the other's.
void PassByTurns(benchmark::State& state, const std::string& payload, CStation& measured,
                 CStation& other, const char* counter) {
    double otherTime = 0;
    double measuredTime = 0;
    for (auto _ : state) {
        otherTime += other.Pass(payload);
        const double time = measured.Pass(payload);
        measuredTime += time;
        state.SetIterationTime(time);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payload.size()));
    state.counters[counter] = otherTime / measuredTime;
}

void DeviceToScreen(benchmark::State& state, const std::string& payload) {
    CStation copyLoop(BENCH_COPY_LOOP);
    CStation wirelet(WIRELET);
    PassByTurns(state, payload, wirelet, copyLoop, "of_copy_loop");
}
BENCHMARK_CAPTURE(DeviceToScreen, plain, MakePlainLines(kPayload))->UseManualTime()->Iterations(12);
BENCHMARK_CAPTURE(DeviceToScreen, coloured, MakeColouredLines(kPayload))
    ->UseManualTime()
    ->Iterations(12);

void DeviceToScreenAndLog(benchmark::State& state) {
    const CTempFolder folder;
    const std::string payload = MakePlainLines(kLoggedPayload);
    CStation unlogged(WIRELET);
    CStation logged(WIRELET, "-O:" + folder.GetPath("log"));
    unlogged.TypeEvery(kShownPerKey);
    logged.TypeEvery(kShownPerKey);
    PassByTurns(state, payload, logged, unlogged, "of_unlogged");
    state.counters["log_bytes_per_byte"] =
        static_cast<double>(ReadWholeFile(folder.GetPath("log")).size()) /
        (static_cast<double>(state.iterations()) * static_cast<double>(payload.size()));
}
BENCHMARK(DeviceToScreenAndLog)->UseManualTime()->Iterations(12);

} // namespace

BENCHMARK_MAIN();
