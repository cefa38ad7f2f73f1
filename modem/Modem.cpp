// An answer is read as it comes; between two reads the port is waited for, and polled where it
// cannot be. All that a device could delay for ever has a deadline or ends with the device.
#include "modem/Modem.h"

#include "diagnostics/ModuleTrace.h"
#include "modem/DataTrace.h"
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/EndRequest.h"

#include <cstring>
#include <string_view>

namespace {

// A device is not sent a command sooner than this after its last final result code: phones drop
// what comes while they still tidy up the previous command.
constexpr DWORD kQuietTime = 100;

constexpr DWORD kReadSize = 1023;

// A longer answer would only be cut by the trace.
constexpr std::size_t kTracedResponse = 512;

constexpr DWORD kUnlimitedRoom = 0xFFFFFFFF;

} // namespace

CVModem::CVModem() {
    ISerial* serial = nullptr;
    CreateSerial(&serial, nullptr);
    TakeSerial(serial);
}

CVModem::~CVModem() {
    Close();
    // Before the telephony object, which may have given it its port.
    TakeSerial(nullptr);
}

void CVModem::TakeSerial(ISerial* serial) {
    m_pSerial.Reset(serial);
    m_pSerialWait = m_pSerial.Query<ISerialWait>(IID_ISerialWait);
}

BOOL CVModem::Open(const std::string& path) {
    if (!m_pSerial)
        return FALSE;
    const BOOL opened = m_pSerial->Open(path.c_str());
    if (opened)
        m_bPortOpen = TRUE;
    // The caller asks the last error why the port did not open; the trace may look for its module.
    const DWORD error = GetLastError();
    DebugTrace("CVModem::Open() - %s = %d\n", path.c_str(), opened ? 1 : 0);
    SetLastError(error);
    return opened;
}

void CVModem::Close() {
    if (m_bCallActive)
        HangUpCall();
    m_bCallActive = FALSE;
    if (!m_bPortOpen)
        return;
    if (m_pSerial)
        m_pSerial->Close();
    m_bPortOpen = FALSE;
}

BOOL CVModem::SendCommand(LPCSTR command) {
    const BOOL written = Write(command, static_cast<DWORD>(std::strlen(command)));
    DebugTrace("CVModem::SendCommand() ->%s", command);
    return written;
}

BOOL CVModem::GetResponse(DWORD& code, std::string& response, DWORD timeout) {
    code = RESULT_NO_RESPONSE;
    CFinalResult finalResult(response);
    const platform::CDeadline deadline(timeout);
    do {
        char buffer[kReadSize];
        DWORD count = 0;
        if (!Read(buffer, kReadSize, count))
            continue;
        const CFinalResult::Verdict verdict = finalResult.Append({buffer, count});
        if (verdict == CFinalResult::Verdict::None)
            continue;
        Conclude(verdict, code, response);
        return TRUE;
    } while (WaitForBytes(deadline));
    DebugTrace("CVModem::GetResponse() - Failed\n");
    return FALSE;
}

void CVModem::Conclude(CFinalResult::Verdict verdict, DWORD& code, const std::string& response) {
    using Verdict = CFinalResult::Verdict;
    code = verdict == Verdict::Ok ? RESULT_OK : RESULT_ERROR;
    if (verdict == Verdict::Ok)
        DebugTrace("CVModem::GetResponse() ->%s\n", response.substr(0, kTracedResponse).c_str());
    else if (verdict == Verdict::Error)
        DebugTrace("CVModem::GetResponse() - Error\n");
    else
        DebugTrace("CVModem::GetResponse() - %s Error: %s\n",
                   verdict == Verdict::CmeError ? "CME" : "CMS", response.c_str());
    m_dwLastResponse = GetTickCount();
}

BOOL CVModem::SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response) {
    response.clear();
    const DWORD delay = GetPacingDelay();
    if (delay != 0)
        DebugTrace("CVModem::SendCommandGetResponse() elapsed time->%ld\n",
                   static_cast<long>(delay));
    return Exchange(delay, command, m_nRetry,
                    [&] { return GetResponse(code, response, m_dwTimeout); });
}

BOOL CVModem::Exchange(DWORD delay, LPCSTR command, int attempts,
                       const std::function<BOOL()>& collect) {
    if (delay != 0)
        Sleep(delay);
    for (int attempt = 0; attempt < attempts && !IsOver(); ++attempt) {
        if (m_pSerial) {
            m_pSerial->Flush(_QUE_RX);
            m_pSerial->Flush(_QUE_TX);
        }
        SendCommand(command);
        if (collect())
            return TRUE;
    }
    return FALSE;
}

BOOL CVModem::Write(LPCVOID bytes, DWORD count) {
    if (!m_pSerial)
        return FALSE;
    const DWORD written = m_pSerial->Write(bytes, count);
    TraceData(bytes, count, TRUE);
    return written == count;
}

BOOL CVModem::Read(LPVOID buffer, DWORD capacity, DWORD& count) {
    count = 0;
    if (!m_pSerial)
        return FALSE;
    count = m_pSerial->Read(buffer, capacity);
    TraceData(buffer, count, FALSE);
    return count != 0;
}

BOOL CVModem::SendString(LPCSTR text) {
    return Write(text, static_cast<DWORD>(std::strlen(text)));
}

void CVModem::SetDtrRts(BOOL on) {
    if (!m_pSerial)
        return;
    m_pSerial->SetLine(LINE_DTR, on);
    m_pSerial->SetLine(LINE_RTS, on);
}

BOOL CVModem::SetDataFormat(DWORD baudRate, DWORD parity, DWORD byteSize, DWORD stopBits) {
    if (!m_pSerial)
        return FALSE;
    return m_pSerial->SetDataFormat(baudRate, parity, byteSize, stopBits);
}

void CVModem::SetFlowControl(DWORD mode) {
    if (m_pSerial)
        m_pSerial->SetFlowControl(mode);
}

BOOL CVModem::GetBaudRate(DWORD& baudRate) {
    if (!m_pSerial)
        return FALSE;
    return m_pSerial->GetDataFormat(&baudRate, nullptr, nullptr, nullptr);
}

BOOL CVModem::IsOpen() {
    return m_bPortOpen;
}

void CVModem::SetTimeout(DWORD milliseconds) {
    m_dwTimeout = milliseconds;
}

HANDLE CVModem::GetReceiveHandle() {
    return m_pSerialWait ? m_pSerialWait->GetReceiveHandle() : nullptr;
}

HANDLE CVModem::GetHangupHandle() {
    return m_pSerialWait ? m_pSerialWait->GetHangupHandle() : nullptr;
}

HANDLE CVModem::GetProgressEvent() {
    return m_pSerialWait ? m_pSerialWait->GetProgressEvent() : nullptr;
}

BOOL CVModem::IsDeviceGone() {
    return m_pSerialWait ? m_pSerialWait->IsDeviceGone() : FALSE;
}

BOOL CVModem::Drain(DWORD noProgress) {
    return m_pSerialWait ? m_pSerialWait->Drain(noProgress) : FALSE;
}

DWORD CVModem::GetWriteRoom() {
    if (!m_pSerial || !m_pSerial->IsOpen())
        return kUnlimitedRoom;
    return m_pSerial->GetQueueInfo(_QUE_TXFREE);
}

DWORD CVModem::GetQueuedOutput() {
    if (!m_pSerial || !m_pSerial->IsOpen())
        return 0;
    return m_pSerial->GetQueueInfo(_QUE_TXCOUNT);
}

bool CVModem::IsOver() {
    return IsDeviceGone() || platform::IsEndRequested();
}

DWORD CVModem::GetPacingDelay() const {
    const DWORD elapsed = GetTickCount() - m_dwLastResponse; // right across the counter's wrap
    return elapsed < kQuietTime ? kQuietTime - elapsed : 0;
}

BOOL CVModem::WaitForBytes(const platform::CDeadline& deadline) {
    const DWORD remaining = deadline.Remaining();
    if (remaining == 0)
        return FALSE;
    if (m_pSerial && !m_pSerialWait) {
        Sleep(1);
        return TRUE;
    }
    const HANDLE receive = GetReceiveHandle();
    if (!receive) {
        // No port, or a closed one: nothing can arrive, and the time-out takes its full time.
        Sleep(remaining);
        return FALSE;
    }
    if (WaitForSingleObject(receive, remaining) != WAIT_OBJECT_0)
        return FALSE;
    return !IsDeviceGone();
}

void CVModem::WaitWithoutReading(const platform::CDeadline& deadline) {
    const HANDLE hangup = GetHangupHandle();
    if (hangup)
        WaitForSingleObject(hangup, deadline.Remaining());
    else
        Sleep(deadline.Remaining());
}
