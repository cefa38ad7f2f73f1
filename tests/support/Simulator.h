// The simulated modem as a process: started on construction, ended with the object.
#pragma once

#include "tests/support/Collector.h"
#include "tests/support/Process.h"

class CSimulator {
  public:
    // Waits until the simulator has told its device's path, or has ended without one.
    explicit CSimulator(CPump& pump, const std::vector<std::string>& options = {});
    ~CSimulator();

    // Empty when there is none.
    const std::string& GetPath() const { return m_path; }
    void Kill(int signal) { m_process.Kill(signal); }
    // Waits for the end; the exit code, or minus the number of the signal that ended it.
    int AwaitExit();

  private:
    ProcessOptions Options(const std::vector<std::string>& options) const;

    CPump& m_pump;
    CCollector m_output;
    CProcess m_process;
    std::string m_path;
};
