// ISerialWait: what a channel offers to those who would rather block than poll.
//
// A second interface beside ISerial; a channel that has it answers IID_ISerialWait when queried, a
// channel without it is polled. Handles stay the channel's and are valid until the port is closed;
// a closed port gives null. Called from the thread that opens and closes the channel.
#pragma once

#include "platform/Types.h"

inline constexpr IID IID_ISerialWait = {
    0x1D97A0C4, 0x83B6, 0x4E1F, {0xB2, 0x64, 0x0F, 0x3A, 0x9C, 0x58, 0x71, 0xE6}};

class ISerialWait : public IUnknown {
  public:
    // Signalled while Read would return bytes, and once the device is gone.
    virtual HANDLE GetReceiveHandle() = 0;

    // Signalled once the device is gone, never by received bytes.
    virtual HANDLE GetHangupHandle() = 0;

    // An auto-reset event, signalled whenever the write thread has taken bytes out of the transmit
    // buffer or has finished writing some. A signal may be left over from an earlier step: look
    // again after every wait.
    virtual HANDLE GetProgressEvent() = 0;

    // TRUE when the open port's device is gone and all that it had sent has been read.
    virtual BOOL IsDeviceGone() = 0;

    // Blocks until every accepted byte has left the transmit buffer and the driver; TRUE. FALSE
    // when the device is gone, or has taken no byte for dwNoProgress milliseconds.
    virtual BOOL Drain(DWORD dwNoProgress) = 0;

  protected:
    ~ISerialWait() = default;
};
