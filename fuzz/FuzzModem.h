// CFuzzModem: a device that answers with the bytes it was made with, at once.
//
// One for each run. Whatever a script asks of it takes bytes, so that one input can answer, stay
// silent, refuse and vanish. When the bytes are used up there is nothing more to come; a device
// whose last byte is 0xFF is then gone.
#pragma once

#include "modem/Modem.h"

#include <span>

class CFuzzModem final : public CVModem {
  public:
    // The bytes outlive the object.
    explicit CFuzzModem(std::span<const BYTE> bytes);

    BOOL SendCommand(LPCSTR command) override { return Write(command, 0); }
    BOOL GetResponse(DWORD& code, std::string& response, DWORD timeout) override;
    BOOL SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response) override;
    BOOL Write(LPCVOID bytes, DWORD count) override;
    BOOL Read(LPVOID buffer, DWORD capacity, DWORD& count) override;
    BOOL SendString(LPCSTR text) override;
    void SetDtrRts(BOOL) override {}
    BOOL SetDataFormat(DWORD baudRate, DWORD, DWORD, DWORD) override { return baudRate % 2 == 0; }
    void SetFlowControl(DWORD) override {}
    BOOL GetBaudRate(DWORD& baudRate) override;
    BOOL IsOpen() override { return TRUE; }
    void SetTimeout(DWORD) override {}
    BOOL IsDeviceGone() override { return m_vanishes && m_rest.empty(); }
    BOOL WaitForBytes(const CDeadline& deadline) override;

  private:
    BYTE Take();

    std::span<const BYTE> m_rest;
    bool m_vanishes;
    std::size_t m_repeated = 0; // characters of long answers so far
};
