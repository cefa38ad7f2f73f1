// The session's modem: a CVModem that can also send one line of a command file and await its
// answer.
//
// Owned by the session, on its stack; used from its thread only.
#pragma once

#include "modem/Modem.h"

#include <string>

class CTermModem : public CVModem {
  public:
    ~CTermModem() override = default;

    // Sends a command, which carries its own CR, up to three times, and awaits "OK" or "ERROR" for
    // ten seconds each time. A command is not sent sooner than 100 ms after the last byte of the
    // answer before it. TRUE when a final result code arrived; the response is then all that the
    // device said. FALSE when it did not, and at once when the device is gone.
    BOOL SendLineWaitFinal(const std::string& command, std::string& response);

    // Reads until "OK" or "ERROR" has arrived; TRUE. FALSE after timeAllowed milliseconds, when
    // the device is gone, or without a port (the response is then left alone). The response is what
    // arrived, at most 1023 bytes and up to the first NUL.
    BOOL WaitForFinalResult(std::string& response, DWORD timeAllowed);
};
