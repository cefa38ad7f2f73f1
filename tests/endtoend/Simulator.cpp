#include "tests/endtoend/Simulator.h"

#include <gtest/gtest.h>

CSimulator::CSimulator(CPump& pump, const std::vector<std::string>& options) {
    ProcessOptions process;
    process.arguments.emplace_back(WIRELET_MODEMSIM);
    process.arguments.insert(process.arguments.end(), options.begin(), options.end());
    process.output = m_output.GetWriter();
    process.error = STDERR_FILENO;
    m_process = std::make_unique<CProcess>(process);
    m_output.CloseWriter();
    pump.Add(m_output);
    pump.Add(*m_process);

    // The path is the word that begins with "/dev/".
    EXPECT_TRUE(pump.RunUntil([this] {
        return m_output.GetText().find('\n') != std::string::npos || m_output.HasEnded();
    }));
    const std::string& text = m_output.GetText();
    const std::size_t start = text.find("/dev/");
    EXPECT_NE(start, std::string::npos) << text;
    if (start != std::string::npos)
        m_path = text.substr(start, text.find_first_of(" \r\n", start) - start);
}
