// A USB adapter that the test itself plays, by the kernel's FunctionFS: the driver takes it for the
// same kind of adapter as the emulated one. For what the emulators do not do: bytes with errors,
// and a device that takes nothing, as this one never does.
//
// Plugged in from construction to destruction, as the next free /dev/ttyUSB. A thread answers the
// driver's requests. Its gadget stays in configfs: a process makes one.
#pragma once

#include "platform/Types.h"
#include "tests/support/Pipe.h"

#include <atomic>
#include <string>
#include <thread>

class CPlayedAdapter {
  public:
    // Bits of the status that comes with received bytes.
    static constexpr BYTE kOverrun = 0x02;
    static constexpr BYTE kParityError = 0x04;
    static constexpr BYTE kFramingError = 0x08;
    static constexpr BYTE kBreak = 0x10;

    // All lines up, with the bit that is always set, and the same without carrier.
    static constexpr BYTE kLines = 0xB1;
    static constexpr BYTE kNoCarrier = 0x31;

    CPlayedAdapter();
    CPlayedAdapter(const CPlayedAdapter&) = delete;
    CPlayedAdapter& operator=(const CPlayedAdapter&) = delete;
    ~CPlayedAdapter();

    // Has bytes received, or without any the lines moved; the port must be open.
    void Send(const std::string& bytes, BYTE status = 0, BYTE lines = kLines);

  private:
    void AnswerRequests();

    std::atomic<BYTE> m_lines = kLines;
    CDescriptor m_control;
    CDescriptor m_input;
    std::thread m_thread;
};
