#include "tests/support/Simulator.h"

CSimulator::CSimulator(CPump& pump, const std::vector<std::string>& options)
    : m_pump(pump), m_process(Options(options)) {
    m_output.CloseWriter();
    m_pump.Add(m_output);
    m_pump.Add(m_process);
    const std::string& text = m_output.GetText();
    EXPECT_TRUE(m_pump.RunUntil(
        [&] { return text.find('\n') != std::string::npos || m_output.HasEnded(); }));
    m_path = text.substr(0, text.find('\n'));
}

CSimulator::~CSimulator() {
    m_pump.Remove(m_output);
    m_pump.Remove(m_process);
}

ProcessOptions CSimulator::Options(const std::vector<std::string>& options) const {
    ProcessOptions process;
    process.arguments = {WIRELET_MODEMSIM};
    process.arguments.insert(process.arguments.end(), options.begin(), options.end());
    process.output = m_output.GetWriter();
    process.error = STDERR_FILENO;
    return process;
}

int CSimulator::AwaitExit() {
    EXPECT_TRUE(m_pump.RunUntil([this] { return m_process.HasEnded(); }));
    return m_process.GetExit();
}
