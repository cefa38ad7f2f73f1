// The reading end of a pipe: collects what a program writes to its standard output or error.
#pragma once

#include "tests/support/Pipe.h"
#include "tests/support/Pump.h"

#include <string>

class CCollector : public IPollable {
  public:
    // The end that the program gets; closed here once the program has its copy.
    int GetWriter() const { return m_pipe.writer.Get(); }
    void CloseWriter() { m_pipe.writer.Reset(); }
    // Nobody reads any more.
    void CloseReader() { m_pipe.reader.Reset(); }

    const std::string& GetText() const { return m_text; }
    bool HasEnded() const { return !m_pipe.reader; }

    int GetDescriptor() const override { return m_pipe.reader.Get(); }
    void OnReady(short) override {
        char bytes[65536];
        const ssize_t count = read(m_pipe.reader.Get(), bytes, sizeof(bytes));
        if (count > 0)
            m_text.append(bytes, static_cast<std::size_t>(count));
        else
            CloseReader();
    }

  private:
    Pipe m_pipe;
    std::string m_text;
};
