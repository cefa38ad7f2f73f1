// The simulated modem as a process: started on construction, ended with the object.
#pragma once

#include "tests/endtoend/Collector.h"
#include "tests/endtoend/Process.h"

#include <memory>

class CSimulator {
  public:
    // Waits until the simulator has told its device's path. The pump must not run any more once
    // this object has gone.
    explicit CSimulator(CPump& pump, const std::vector<std::string>& options = {});

    const std::string& GetPath() const { return m_path; }

  private:
    CCollector m_output;
    std::unique_ptr<CProcess> m_process;
    std::string m_path;
};
