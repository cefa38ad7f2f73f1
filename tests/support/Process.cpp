#include "tests/support/Process.h"

#include "tests/support/TempFolder.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {

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
void CloseBetween(int first, int last) {
    if (first <= last)
        close_range(static_cast<unsigned>(first), static_cast<unsigned>(last), 0);
}

void Connect(int descriptor, int target) {
    dup2(descriptor >= 0 ? descriptor : open("/dev/null", O_RDWR | O_CLOEXEC), target);
}

} // namespace

CProcess::CProcess(const ProcessOptions& options) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    m_channel.Reset(ends[0]);
    CDescriptor supervisors(ends[1]);
    // Else a copy of this process that comes to its end writes it once more.
    std::fflush(nullptr);
    m_nSupervisor = fork();
    if (m_nSupervisor == 0)
        Supervise(options, supervisors.Get());
    supervisors.Reset();
    EXPECT_EQ(read(m_channel.Get(), &m_report, sizeof(m_report)),
              static_cast<ssize_t>(sizeof(m_report)));
}

CProcess::~CProcess() {
    m_channel.Reset();
    while (waitpid(m_nSupervisor, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void CProcess::Supervise(const ProcessOptions& options, int channel) {
    setsid();
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGTTOU, SIG_IGN);
    if (!options.terminal.empty())
        close(open(options.terminal.c_str(), O_RDWR)); // becomes the controlling terminal

    const pid_t program = fork();
    if (program == 0)
        Execute(options);
    CloseBetween(STDERR_FILENO + 1, channel - 1);
    CloseBetween(channel + 1, INT_MAX);
    Connect(-1, STDIN_FILENO);
    Connect(-1, STDOUT_FILENO);

    Report report = {program, 0};
    static_cast<void>(!write(channel, &report, sizeof(report)));
    const int exit = static_cast<int>(syscall(SYS_pidfd_open, program, 0));
    pollfd watched[] = {{exit, POLLIN, 0}, {channel, POLLIN, 0}};
    while (poll(watched, std::size(watched), -1) < 0) {
    }
    if (!(watched[0].revents & POLLIN))
        kill(program, SIGKILL);
    waitpid(program, &report.status, 0);
    static_cast<void>(!write(channel, &report, sizeof(report)));
    char nothing = 0;
    static_cast<void>(!read(channel, &nothing, 1));
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
    CloseBetween(STDERR_FILENO + 1, INT_MAX);
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

bool CProcess::IsStopped() const {
    return ReadWholeFile("/proc/" + std::to_string(m_report.id) + "/stat").find(") T ") !=
           std::string::npos;
}

std::string CProcess::GetActivity() const {
    std::string activity;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(m_report.id) + "/task"))
        activity += ReadWholeFile(task.path() / "schedstat");
    return activity;
}

void CProcess::OnReady(short) {
    m_bEnded = true;
    if (read(m_channel.Get(), &m_report, sizeof(m_report)) !=
        static_cast<ssize_t>(sizeof(m_report)))
        return;
    m_nExit =
        WIFEXITED(m_report.status) ? WEXITSTATUS(m_report.status) : -WTERMSIG(m_report.status);
}
