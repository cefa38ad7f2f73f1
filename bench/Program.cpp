// The whole program beside the copy loop, in one run: bytes from the device to the screen. The
// ratio is the figure to compare; bytes per second depend on the machine and its load.

#include "bench/Payload.h"
#include "tests/endtoend/Process.h"
#include "tests/endtoend/PseudoTerminal.h"

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <poll.h>

namespace {

constexpr std::size_t kPayload = std::size_t{4} << 20;
constexpr int kPatience = 10000; // milliseconds without a byte after which a program has failed

using Seconds = std::chrono::duration<double>;

// One program between a device and a screen, both played by this process.
class CStation {
  public:
    explicit CStation(const char* program) : m_process(Options(program)) {
        Send("ready?\r\n");
        Await("ready?");
    }

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
    ProcessOptions Options(const char* program) {
        m_screen.SetSize(25, 80);
        termios settings = m_device.GetSettings();
        cfmakeraw(&settings);
        m_device.ApplySettings(settings);
        return {{program, m_device.GetPath()}, {"TERM=xterm-256color", "LANG=C.UTF-8"},
                m_screen.GetSlave(),           m_screen.GetSlave(),
                m_screen.GetSlave(),           m_screen.GetPath()};
    }

    void Send(std::string bytes) { m_unsent += bytes; }

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
            if ((sides[0].revents & POLLIN) != 0)
                seen = seen.substr(seen.size() - std::min(seen.size(), mark.size())) +
                       m_screen.Read(65536);
            if ((sides[1].revents & POLLIN) != 0)
                m_device.Read(65536);
            if ((sides[1].revents & POLLOUT) != 0)
                SendSome();
        }
    }

    // A piece of its own: taking bytes from the front of the whole would cost a move of all of it.
    void SendSome() {
        constexpr std::size_t kPiece = 32768;
        std::string piece = m_unsent.substr(m_nSent, kPiece);
        const std::size_t size = piece.size();
        m_device.Write(piece);
        m_nSent += size - piece.size();
        if (m_nSent < m_unsent.size())
            return;
        m_unsent.clear();
        m_nSent = 0;
    }

    CPseudoTerminal m_device;
    CPseudoTerminal m_screen;
    CProcess m_process;
    std::string m_unsent;
    std::size_t m_nSent = 0;
    int m_nPass = 0;
};

void DeviceToScreen(benchmark::State& state, const std::string& payload) {
    CStation copyLoop(BENCH_COPY_LOOP);
    CStation wirelet(WIRELET);
    double copyLoopTime = 0;
    double wireletTime = 0;
    for (auto _ : state) {
        copyLoopTime += copyLoop.Pass(payload);
        const double time = wirelet.Pass(payload);
        wireletTime += time;
        state.SetIterationTime(time);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payload.size()));
    state.counters["of_copy_loop"] = copyLoopTime / wireletTime;
}
BENCHMARK_CAPTURE(DeviceToScreen, plain, MakePlainLines(kPayload))->UseManualTime()->Iterations(12);
BENCHMARK_CAPTURE(DeviceToScreen, coloured, MakeColouredLines(kPayload))
    ->UseManualTime()
    ->Iterations(12);

} // namespace

BENCHMARK_MAIN();
