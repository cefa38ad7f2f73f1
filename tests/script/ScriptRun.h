// One run of a script on a recording device, with everything that the device and the user get to
// see of it: one line an event, in order. Bytes that are not plain are written as escapes.
//
//   device> text      sent by SendString or SendFile
//   command> text     sent by SendCommand or SendCommandGetString; "retry n" stands before it when
//                     the number of attempts is another than before
//   answer 0 text     how the device answers a command: the code and the answer
//   device< text      what the device sends by itself, when the script begins to read it
//   gone              the device, when the script is told
//   dtr 0, format 9600 -1 -1 -1, timeout 10, beep, sound path
//   box "caption" "text"
//   report text       the box of an error
//   result 3003       of the run, when it is not 0
#pragma once

#include "modem/Modem.h"
#include "script/Script.h"

#include <deque>
#include <string>

class CScriptRun final : public CVModem {
  public:
    // What the device has to say: lines "answer", "device<" and "gone".
    explicit CScriptRun(std::deque<std::string> inputs = {});
    ~CScriptRun() override;

    // The events, a line feed behind each. A script without end is ended after a while.
    std::string Run(const std::string& path);

    CVScript& Engine() { return m_script; }
    int CountReports() const { return m_nReports; }

    // Whether a line is one that the device has to say.
    static bool IsInput(std::string_view line);

    BOOL SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response) override;
    BOOL Read(LPVOID buffer, DWORD capacity, DWORD& count) override;
    BOOL SendString(LPCSTR text) override { return Record("device>", text); }
    void SetDtrRts(BOOL on) override { Record("dtr", on ? "1" : "0"); }
    BOOL SetDataFormat(DWORD baudRate, DWORD parity, DWORD byteSize, DWORD stopBits) override;
    BOOL GetBaudRate(DWORD& baudRate) override;
    void SetTimeout(DWORD milliseconds) override {
        Record("timeout", std::to_string(milliseconds));
    }
    BOOL IsDeviceGone() override { return TakeInput("gone"); }
    BOOL WaitForBytes(const platform::CDeadline&) override { return FALSE; }

    // TRUE, as what is recorded succeeds.
    BOOL Record(std::string_view event, std::string_view bytes = {});
    void RecordBox(LPCSTR text, LPCSTR caption, UINT type);

  private:
    bool TakeInput(std::string_view kind);

    CVScript m_script;
    std::deque<std::string> m_inputs;
    std::string m_taken;    // the latest input, without its kind
    std::string m_received; // of the device's bytes, those still to be read
    std::string m_record;
    int m_nRetrySeen = m_nRetry;
    int m_nReports = 0;
};
