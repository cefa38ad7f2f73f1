// The far end of a serial device's cable, as a test holds it.
#pragma once

#include "tests/support/ByteQueue.h"
#include "tests/support/Pipe.h"
#include "tests/support/Pump.h"

#include <string>

class CFarEnd : public IPollable {
  public:
    // Opens the path and discards what was left there.
    explicit CFarEnd(const std::string& path);

    void Send(std::string_view bytes) { m_toSend.Append(bytes); }
    bool IsAllSent() const { return m_toSend.IsEmpty(); }
    // Everything received and not yet taken by a test.
    std::string& GetReceived() { return m_received; }

    // Whether exactly these bytes come, since the last time; waits for them.
    testing::AssertionResult Gets(CPump& pump, std::string_view bytes);

    // What is received here is sent there from now on, and the reverse.
    void JoinTo(CFarEnd& other);

    int GetDescriptor() const override { return m_line.Get(); }
    short GetEvents() const override;
    void OnReady(short events) override;

  private:
    CDescriptor m_line;
    CByteQueue m_toSend;
    std::string m_received;
    CFarEnd* m_pOther = nullptr;
};
