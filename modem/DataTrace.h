// The data trace: what CVModem sends and receives, as lines for whoever wants to see the traffic.
//
// Received bytes arrive in small pieces; they are kept until the next send and shown as one block
// before it. 10000 bytes are kept: a read that does not fit any more is left out whole, unless the
// sink has taken what is kept. All of this is one for the process and belongs to the thread that
// uses the modem; there is no lock.
#pragma once

#include "platform/Types.h"

#include <string_view>

// Where the lines go.
class ITraceSink {
  public:
    // The capture switch: while it is off, lines are discarded.
    virtual BOOL IsCapturing() const = 0;

    // Takes one line, without its line end. Bytes of a device are in it as they came.
    virtual void WriteLine(std::string_view line) = 0;

    // Received bytes are about to be kept. They fit beside those that are kept already, or will be
    // left out: a sink that wants them all the same calls DumpPending now.
    virtual void OnReceiving(bool /*fits*/) {}

  protected:
    ~ITraceSink() = default;
};

// Makes the sink the process's own; null takes it away. Without one all lines are discarded. What
// was received before is not shown to the new one.
void SetTraceSink(ITraceSink* sink);

// Takes note of bytes that were sent (TRUE) or received.
void TraceData(LPCVOID bytes, DWORD count, BOOL sent);

// Hands bytes to the sink at once, 30 of them a line: the direction, the bytes as characters with
// "<CR>" and "<LF>" for those two and nothing for NUL, and in hexadecimal.
void DumpData(LPCVOID bytes, DWORD count, BOOL sent);

// Hands what was received and is kept to the sink now.
void DumpPending();
