// Four loops as scripts, beside the same loops in yabasic, another BASIC interpreter, in the same
// run. The ratio is the figure to compare (below 1: the script is the faster one); nanoseconds
// depend on the machine and its load. Both are processor time, the start of each taken off.

#include "modem/Modem.h"
#include "script/Script.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kIterations = 1000; // of the inner loop
constexpr int kPasses = 200;      // of the outer one

struct Loop {
    const char* name;
    const char* before; // definitions of the script, and of the other language behind '|'
    const char* script;
    const char* other;
};

constexpr std::array<Loop, 4> kLoops = {{
    {"Sum", "|", "s = s + i\n", "s = s + i\n"},
    {"Branches", "|",
     "j = j + 1\nIF j = 4 THEN\nj = 0\nENDIF\nIF j = 1 THEN\nIF k = 0 THEN\ns = s + 1\nELSE\n"
     "n = n + 1\nENDIF\nENDIF\n",
     "j = j + 1\nif j = 4 then\nj = 0\nendif\nif j = 1 then\nif k = 0 then\ns = s + 1\nelse\n"
     "n = n + 1\nendif\nendif\n"},
    {"Calls",
     "FUNCTION f(INTEGER x)\nINTEGER y\ny = x\nENDFUNCTION\n|sub f(x)\nlocal y\ny = x\nend sub\n",
     "f(i)\n", "f(i)\n"},
    {"Texts", "|",
     "a$ = \"hello \"\nb$ = a$ + \"world\"\nc$ = \"hello\" + \" world\"\nn = StringCompare(b$, "
     "c$)\n"
     "IF n = 0 THEN\ns = s + 1\nENDIF\n",
     "a$ = \"hello \"\nb$ = a$ + \"world\"\nc$ = \"hello\" + \" world\"\nif b$ = c$ then\ns = s + "
     "1\n"
     "endif\n"},
}};

// A file that is gone with its owner.
class CSource {
  public:
    explicit CSource(const std::string& text) {
        const int descriptor = mkstemp(m_path.data());
        if (descriptor >= 0)
            close(descriptor);
        std::ofstream(m_path, std::ios::binary) << text;
    }
    CSource(const CSource&) = delete;
    CSource& operator=(const CSource&) = delete;
    ~CSource() { unlink(m_path.c_str()); }

    const char* GetPath() const { return m_path.c_str(); }

  private:
    std::string m_path = "/tmp/bench-script-XXXXXX";
};

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

double UsedBy(int whom) {
    rusage usage{};
    getrusage(whom, &usage);
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

std::string ScriptText(const Loop& loop, int passes) {
    const std::string before = loop.before;
    const std::string text =
        before.substr(0, before.find('|')) +
        "FUNCTION main()\nINTEGER i, j, k, n, s\nSTRING a$, b$, c$\nFOR k = 1 TO " +
        std::to_string(passes) + "\nFOR i = 1 TO " + std::to_string(kIterations) + "\n" +
        loop.script + "NEXT\nNEXT\nENDFUNCTION\n";
    std::string lines;
    for (const char character : text)
        lines += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return lines;
}

std::string OtherText(const Loop& loop, int passes) {
    const std::string before = loop.before;
    return "for k = 1 to " + std::to_string(passes) + "\nfor i = 1 to " +
           std::to_string(kIterations) + "\n" + loop.other + "next i\nnext k\nexit\n" +
           before.substr(before.find('|') + 1);
}

double RunScript(const Loop& loop, int passes) {
    const CSource source(ScriptText(loop, passes));
    const double before = UsedBy(RUSAGE_SELF);
    CVModem modem;
    CVScript script;
    if (script.Run(source.GetPath(), &modem) != 0 || script.HasError())
        std::abort();
    return UsedBy(RUSAGE_SELF) - before;
}

// Negative when there is no such interpreter.
double RunOther(const Loop& loop, int passes) {
    const CSource source(OtherText(loop, passes));
    std::string path = source.GetPath();
    std::string name = "yabasic";
    char* arguments[] = {name.data(), path.data(), nullptr};
    const double before = UsedBy(RUSAGE_CHILDREN);
    pid_t child = 0;
    int status = 0;
    if (posix_spawnp(&child, name.c_str(), nullptr, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
        return -1;
    return UsedBy(RUSAGE_CHILDREN) - before;
}

void MeasureLoop(benchmark::State& state, const Loop& loop) {
    double script = 0;
    double other = 0;
    for (auto _ : state) {
        script += RunScript(loop, kPasses) - RunScript(loop, 1);
        const double others = RunOther(loop, kPasses);
        if (others < 0)
            return state.SkipWithError("yabasic is not installed");
        other += others - RunOther(loop, 1);
    }
    const double iterations = static_cast<double>(state.iterations()) * (kPasses - 1) * kIterations;
    state.counters["ns"] = 1e9 * script / iterations;
    state.counters["ratio"] = script / other;
}

} // namespace

int main(int count, char** arguments) {
    for (const Loop& loop : kLoops)
        benchmark::RegisterBenchmark(loop.name, MeasureLoop, loop)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
