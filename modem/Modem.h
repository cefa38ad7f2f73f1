// CVModem: the object through which the rest of the system talks to a phone or modem.
//
// It owns the serial port object and, once a modem was opened by name, a telephony object, and
// offers AT commands with their answers, raw bytes, the control lines and the line settings. It
// knows no command: it moves bytes and recognises final result codes. One thread uses an object at
// a time; there is no lock. The destructor closes the device and releases the port. Texts are
// NUL-terminated bytes unless told otherwise; time-outs are milliseconds.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/InterfacePtr.h"
#include "modem/FinalResult.h"
#include "platform/Types.h"
#include "platform/objects/Deadline.h"
#include "telephony/ITapi.h"

#include <functional>
#include <string>

// How an AT command was answered.
inline constexpr DWORD RESULT_OK = 0;
inline constexpr DWORD RESULT_ERROR = 4;
inline constexpr DWORD RESULT_NO_RESPONSE = 100;

class CVModem {
  public:
    // Makes the serial port object. When that fails there is none: operations that need it return
    // FALSE or do nothing.
    CVModem();
    CVModem(const CVModem&) = delete;
    CVModem& operator=(const CVModem&) = delete;

    // Writes the command as given, no line end added. The result is Write's.
    virtual BOOL SendCommand(LPCSTR command);

    // Collects the device's answer up to its final result code. TRUE with RESULT_OK and the answer
    // without the code, or RESULT_ERROR and the extended error's text (empty for a plain ERROR).
    // FALSE with RESULT_NO_RESPONSE and what has come so far, at the time-out or at once when the
    // device is gone. At least one read is made. Of the response CFinalResult::kMaxResponse bytes
    // are kept.
    virtual BOOL GetResponse(DWORD& code, std::string& response, DWORD timeout);

    // Sends a command and collects the answer, up to m_nRetry times with m_dwTimeout each, not
    // sooner than 100 ms after the last final result code; both directions of the port are flushed
    // before each attempt. TRUE when a final result code came, an error's too. Without an attempt
    // the code is not written.
    virtual BOOL SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response);

    // Hands bytes to the port; blocks while its transmit buffer is full. TRUE when it took all.
    virtual BOOL Write(LPCVOID bytes, DWORD count);

    // Takes received bytes, never waits. TRUE and the count when there was at least one, else FALSE
    // and 0.
    virtual BOOL Read(LPVOID buffer, DWORD capacity, DWORD& count);

    // Writes the text's bytes. The result is Write's.
    virtual BOOL SendString(LPCSTR text);

    // Raises or drops DTR, then RTS.
    virtual void SetDtrRts(BOOL on);

    // Baud, parity code, data bits, stop-bit code, as of ISerial; KEEP_SETTING keeps one. FALSE
    // when the port refuses.
    virtual BOOL SetDataFormat(DWORD baudRate, DWORD parity, DWORD byteSize, DWORD stopBits);

    // _FLOW_NONE to _FLOW_BOTH.
    virtual void SetFlowControl(DWORD mode);

    // The baud rate; FALSE when the port cannot tell it.
    virtual BOOL GetBaudRate(DWORD& baudRate);

    // TRUE from a successful Open to Close.
    virtual BOOL IsOpen();

    // The time allowed for the answer to one attempt of SendCommandGetResponse.
    virtual void SetTimeout(DWORD milliseconds);

    virtual ~CVModem();

    // Opens the serial port of the given path. FALSE when that fails; the last error then tells
    // why.
    BOOL Open(const std::string& path);

    // Opens a modem by the name that the telephony service has for it: a data call without a number
    // hands its port over, which is ours until Close. Blocks up to a minute for the service's
    // reply. FALSE, with all given back, when that fails; the last error then tells why:
    // ERROR_MOD_NOT_FOUND (no service), ERROR_FILE_NOT_FOUND (no modem of that name when
    // GetDevicePath is empty, else no device), ERROR_ACCESS_DENIED (no permission, or open in
    // another program), ERROR_BUSY (a device manager keeps it), ERROR_TIMEOUT,
    // ERROR_NOT_ENOUGH_MEMORY, ERROR_GEN_FAILURE.
    BOOL OpenDevice(const std::string& name);

    // Gives an open port handle, and the call behind it, to this object. Always TRUE.
    BOOL AttachHandle(HANDLE port, BOOL overlapped);

    // Where the device is that OpenDevice has failed to open; empty when the service does not tell.
    const std::string& GetDevicePath() const { return m_strDevicePath; }

    // Closes the device; does nothing when it is closed.
    void Close();

    // What the port offers to those who would rather block than poll, as of ISerialWait. Handles
    // are null when there is no open port or the channel can only be polled.
    HANDLE GetReceiveHandle();
    HANDLE GetHangupHandle();
    HANDLE GetProgressEvent();

    // TRUE once the open device is gone and all that it had sent has been read.
    virtual BOOL IsDeviceGone();

    // Blocks until Read may give more bytes: TRUE. FALSE when the deadline is reached or the device
    // is gone. A channel that cannot be waited for is polled: TRUE after a millisecond.
    virtual BOOL WaitForBytes(const platform::CDeadline& deadline);

    // How often SendCommandGetResponse sends a command before it gives up; 0 or less: never.
    void SetRetry(int attempts) { m_nRetry = attempts; }

    // Blocks until all accepted bytes have gone out. FALSE when the device is gone, has taken no
    // byte for the given milliseconds, or cannot be waited for.
    BOOL Drain(DWORD noProgress);

    // How many bytes Write takes without blocking. 0xFFFFFFFF without an open port, where Write
    // returns at once.
    DWORD GetWriteRoom();

    // How many accepted bytes have not gone out yet; 0 without an open port.
    DWORD GetQueuedOutput();

  protected:
    // Makes this the port; takes over a reference that the caller owns, or null for no port.
    void TakeSerial(ISerial* serial);

    // Nothing is to be sent any more: the device is gone, or the end of the program was asked for.
    bool IsOver();

    // Blocks until the deadline, whatever arrives, or until the device is gone.
    void WaitWithoutReading(const platform::CDeadline& deadline);

    // Milliseconds until a device may be sent its next command; 0 when it may be sent now.
    DWORD GetPacingDelay() const;

    // Sends a command after the delay and has its answer collected, up to so many times; both
    // directions of the port are flushed before each. TRUE as soon as the collecting gives that;
    // FALSE when it never does, and without another attempt once nothing is to be sent any more.
    BOOL Exchange(DWORD delay, LPCSTR command, int attempts, const std::function<BOOL()>& collect);

    CInterfacePtr<ISerial> m_pSerial;
    CInterfacePtr<ITapi> m_pTapi;
    BOOL m_bCallActive = FALSE; // the port is a telephony call's
    BOOL m_bPortOpen = FALSE;
    DWORD m_dwLastResponse = 0; // tick count of the last final result code
    int m_nRetry = 3;
    DWORD m_dwTimeout = 1500;

  private:
    BOOL StartTelephony(const std::string& name);
    BOOL FindDevice(const std::string& name, DWORD& device);
    LONG PlaceCall(const std::string& name, DWORD device);
    std::string AskDevicePath(DWORD device);
    BOOL TakeHandle(HANDLE& port);
    void HangUpCall();
    void Conclude(CFinalResult::Verdict verdict, DWORD& code, const std::string& response);

    CInterfacePtr<ISerialWait> m_pSerialWait; // of m_pSerial; empty when that can only be polled
    std::string m_strDevicePath;
};
