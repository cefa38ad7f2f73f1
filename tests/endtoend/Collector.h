// The reading end of a pipe: collects what a program writes to its standard output or error.
#pragma once

#include "tests/endtoend/Descriptor.h"
#include "tests/endtoend/Pump.h"

#include <string>

class CCollector : public IPollable {
  public:
    CCollector();

    // The end that the program gets; closed here once the program has its copy.
    int GetWriter() const { return m_writer.Get(); }
    void CloseWriter() { m_writer.Reset(); }
    // Nobody reads any more.
    void CloseReader() { m_reader.Reset(); }

    const std::string& GetText() const { return m_text; }
    bool HasEnded() const { return !m_reader.IsOpen(); }

    int GetDescriptor() const override { return m_reader.Get(); }
    short GetEvents() const override;
    void OnReady(short events) override;

  private:
    CDescriptor m_reader;
    CDescriptor m_writer;
    std::string m_text;
};
