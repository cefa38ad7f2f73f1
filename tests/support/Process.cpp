#include "tests/support/Process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {

constexpr int kMostDescriptors = 1024;
constexpr int kCannotExecute = 127;

std::vector<char*> PointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// The test's own descriptors must not live on in a process that it does not know of: a device that
// the test unplugs would stay.
void CloseAllBut(std::initializer_list<int> kept) {
    for (int descriptor = 3; descriptor < kMostDescriptors; ++descriptor)
        if (std::find(kept.begin(), kept.end(), descriptor) == kept.end())
            close(descriptor);
}

void Connect(int descriptor, int target) {
    dup2(descriptor >= 0 ? descriptor : open("/dev/null", O_RDWR | O_CLOEXEC), target);
}

} // namespace

CProcess::CProcess(const ProcessOptions& options) {
    Pipe status;
    Pipe control;
    // Else a copy of this process that comes to its end writes it once more.
    std::fflush(nullptr);
    m_nSupervisor = fork();
    if (m_nSupervisor == 0)
        Supervise(options, status.writer.Get(), control.reader.Get());
    status.writer.Reset();
    m_status = std::move(status.reader);
    m_control = std::move(control.writer);
    EXPECT_EQ(read(m_status.Get(), &m_report, sizeof(m_report)),
              static_cast<ssize_t>(sizeof(m_report)));
}

CProcess::~CProcess() {
    m_control.Reset();
    while (waitpid(m_nSupervisor, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void CProcess::Supervise(const ProcessOptions& options, int status, int control) {
    CloseAllBut({status, control, options.input, options.output, options.error});
    setsid();
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGTTOU, SIG_IGN);
    if (!options.terminal.empty())
        close(open(options.terminal.c_str(), O_RDWR)); // becomes the controlling terminal

    const pid_t program = fork();
    if (program == 0)
        Execute(options);
    CloseAllBut({status, control});
    Connect(-1, STDIN_FILENO);
    Connect(-1, STDOUT_FILENO);

    Report report = {program, 0};
    static_cast<void>(!write(status, &report, sizeof(report)));
    const int exit = static_cast<int>(syscall(SYS_pidfd_open, program, 0));
    std::array<pollfd, 2> watched = {pollfd{exit, POLLIN, 0}, pollfd{control, POLLIN, 0}};
    while (poll(watched.data(), watched.size(), -1) < 0) {
    }
    if (!(watched[0].revents & POLLIN))
        kill(program, SIGKILL);
    waitpid(program, &report.status, 0);
    static_cast<void>(!write(status, &report, sizeof(report)));
    char nothing = 0;
    static_cast<void>(!read(control, &nothing, 1));
    _exit(0);
}

void CProcess::Execute(const ProcessOptions& options) {
    setpgid(0, 0);
    if (!options.terminal.empty()) {
        const int terminal = open(options.terminal.c_str(), O_RDWR | O_CLOEXEC);
        tcsetpgrp(terminal, getpid());
    }
    // A user's shell starts its programs so, whatever this test was started with.
    for (int signal = 1; signal < SIGRTMIN; ++signal)
        std::signal(signal, SIG_DFL);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    Connect(options.input, STDIN_FILENO);
    Connect(options.output, STDOUT_FILENO);
    Connect(options.error, STDERR_FILENO);
    if (options.work) {
        options.work();
        std::exit(kWorkDone);
    }
    execve(options.arguments[0].c_str(), PointersTo(options.arguments).data(),
           PointersTo(options.environment).data());
    _exit(kCannotExecute);
}

void CProcess::Kill(int signal) const {
    if (m_bEnded)
        return;
    EXPECT_EQ(kill(m_report.id, signal), 0);
}

std::map<std::string, long> CProcess::CountSwitches() const {
    const std::string label = "voluntary_ctxt_switches:";
    std::map<std::string, long> counts;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(m_report.id) + "/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with(label))
                counts[task.path().filename()] = std::stol(line.substr(label.size()));
    }
    return counts;
}

// From the state on: the name before it may contain anything.
std::string CProcess::ReadStatus() const {
    std::ifstream file("/proc/" + std::to_string(m_report.id) + "/stat");
    std::string text;
    std::getline(file, text);
    return text.substr(text.rfind(')') + 2);
}

long CProcess::CountProcessorTicks() const {
    // The state is the third field of all; 14 and 15 are user and system time.
    std::istringstream fields(ReadStatus());
    std::string skipped;
    for (int field = 3; field < 14; ++field)
        fields >> skipped;
    long user = 0;
    long system = 0;
    fields >> user >> system;
    return user + system;
}

void CProcess::OnReady(short) {
    m_bEnded = true;
    if (read(m_status.Get(), &m_report, sizeof(m_report)) != static_cast<ssize_t>(sizeof(m_report)))
        return;
    m_nExit =
        WIFEXITED(m_report.status) ? WEXITSTATUS(m_report.status) : -WTERMSIG(m_report.status);
}
