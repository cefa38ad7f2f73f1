// The parts of the program, one by one, in bytes per second: the ANSI interpreter with the
// console's output under it, the transmit buffer, the parsing of an answer.

#include "CORE/VXSerial/Lib/CommBuffer.h"
#include "bench/Payload.h"
#include "modem/FinalResult.h"
#include "terminal/TermConsole.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <pty.h>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

constexpr std::size_t kPayload = std::size_t{1} << 20;

// Standard output becomes a terminal that somebody reads; the report goes to the former one.
class CBenchTerminal {
  public:
    CBenchTerminal() {
        int terminal = -1;
        winsize size = {25, 80, 0, 0};
        if (openpty(&m_reader, &terminal, nullptr, nullptr, &size) != 0)
            std::abort();
        m_report = dup(STDOUT_FILENO);
        dup2(terminal, STDOUT_FILENO);
        close(terminal);
        m_thread = std::thread([this] { Drain(); });
        m_thread.detach();
    }
    int ReportDescriptor() const { return m_report; }

  private:
    void Drain() const {
        std::array<char, 65536> bytes;
        while (read(m_reader, bytes.data(), bytes.size()) > 0)
            continue;
    }

    int m_reader = -1;
    int m_report = -1;
    std::thread m_thread;
};

void ShowAll(benchmark::State& state, const std::string& payload) {
    CTermConsole console;
    console.Attach(nullptr);
    const auto* const bytes = reinterpret_cast<const BYTE*>(payload.data());
    for (auto _ : state)
        // In the pieces that the terminal reads.
        for (std::size_t at = 0; at < payload.size(); at += 256)
            console.PutText({bytes + at, std::min<std::size_t>(256, payload.size() - at)});
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payload.size()));
}

void InterpreterPlain(benchmark::State& state) {
    ShowAll(state, MakePlainLines(kPayload));
}
BENCHMARK(InterpreterPlain);

void InterpreterColoured(benchmark::State& state) {
    ShowAll(state, MakeColouredLines(kPayload));
}
BENCHMARK(InterpreterColoured);

void TransmitBuffer(benchmark::State& state) {
    CVCommBuffer buffer;
    std::array<BYTE, 1024> chunk{};
    for (auto _ : state) {
        while (buffer.Write(chunk.data(), 256) == 256)
            continue;
        while (buffer.Read(chunk.data(), 1024, TRUE) != 0)
            continue;
    }
    state.SetBytesProcessed(state.iterations() * CVCommBuffer::DEFAULT_BUFFER_SIZE);
}
BENCHMARK(TransmitBuffer);

// A listed phone book of 64 KiB that arrives in reads of 64 bytes.
void AnswerParsing(benchmark::State& state) {
    std::string answer = MakePlainLines(std::size_t{1} << 16) + "\r\nOK\r\n";
    for (auto _ : state) {
        std::string response;
        CFinalResult result(response);
        CFinalResult::Verdict verdict = CFinalResult::Verdict::None;
        for (std::size_t at = 0; at < answer.size() && verdict == CFinalResult::Verdict::None;
             at += 64)
            verdict = result.Append(std::string_view(answer).substr(at, 64));
        benchmark::DoNotOptimize(verdict);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(answer.size()));
}
BENCHMARK(AnswerParsing);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const CBenchTerminal terminal;
    // The reporter prints through the C++ stream of standard output, which is a terminal by now.
    std::FILE* const report = fdopen(terminal.ReportDescriptor(), "w");
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    std::ostringstream text;
    reporter.SetOutputStream(&text);
    reporter.SetErrorStream(&text);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::fputs(text.str().c_str(), report);
    std::fclose(report);
    return 0;
}
