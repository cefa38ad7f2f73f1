// A program under test, in a session of its own as a shell would start it.
//
// Between the test and the program stands a supervisor, the session's leader: a terminal is hung up
// and its settings are lost as soon as the leader goes, and a program started by a shell never is
// the leader. The supervisor kills the program when the test ends or dies; the destructor waits for
// both.
#pragma once

#include "tests/support/Pipe.h"
#include "tests/support/Pump.h"

#include <string>
#include <sys/types.h>
#include <vector>

struct ProcessOptions {
    std::vector<std::string> arguments;   // the first is the program's path
    std::vector<std::string> environment; // NAME=value
    int input = -1;                       // descriptors of the caller; -1: the null device
    int output = -1;
    int error = -1;
    std::string terminal;                 // path of the controlling terminal; empty for none
    std::function<void()> work = nullptr; // done by a copy of this process, in place of a program
};

class CProcess : public IPollable {
  public:
    // The exit code after work that comes to its end.
    static constexpr int kWorkDone = 7;

    explicit CProcess(const ProcessOptions& options);
    CProcess(const CProcess&) = delete;
    CProcess& operator=(const CProcess&) = delete;
    ~CProcess() override;

    pid_t GetId() const { return m_report.id; }
    bool HasEnded() const { return m_bEnded; }
    // After the end: the exit code, or minus the number of the signal that ended it.
    int GetExit() const { return m_nExit; }
    void Kill(int signal) const;

    bool IsStopped() const;
    // The processor time of each of its threads so far: the same as before when none has run.
    std::string GetActivity() const;

    int GetDescriptor() const override { return m_bEnded ? -1 : m_channel.Get(); }
    void OnReady(short events) override;

  private:
    // What the supervisor reports: once when the program runs, once when it has ended.
    struct Report {
        pid_t id;
        int status;
    };

    [[noreturn]] static void Supervise(const ProcessOptions& options, int channel);
    [[noreturn]] static void Execute(const ProcessOptions& options);

    pid_t m_nSupervisor = -1;
    Report m_report{};
    // Reports come here; closing it ends the supervisor and what is left of the program.
    CDescriptor m_channel;
    bool m_bEnded = false;
    int m_nExit = 0;
};
