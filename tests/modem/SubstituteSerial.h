// CSubstituteSerial: takes the place of a serial port under CVModem: the reads are given
// beforehand, what is done to it is recorded in order. It can only be polled, or can be waited for,
// too; then bytes may arrive from another thread. It belongs to the test: references are not
// counted.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/UniqueHandle.h"
#include "modem/Modem.h"
#include "platform/Clock.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

class CSubstituteSerial final : public ISerial, public ISerialWait {
  public:
    enum class Kind { Polled, Waitable };
    explicit CSubstituteSerial(Kind kind = Kind::Polled) : m_kind(kind) {}
    virtual ~CSubstituteSerial() = default;

    // What the next reads give, one entry a read.
    std::deque<std::string> m_reads;
    // What the reads after those give, every time.
    std::string m_endlessRead;
    // An answer that is put into the reads by every write.
    std::string m_answer;

    std::vector<std::string> m_calls;
    DWORD m_dwRoom = 1000;
    DWORD m_dwWriteTick = 0;
    int m_nReads = 0;

    void Arrive(const std::string& bytes) {
        const std::lock_guard lock(m_lock);
        m_reads.push_back(bytes);
        SetEvent(m_hReceive);
    }
    void Vanish() {
        const std::lock_guard lock(m_lock);
        m_bVanished = TRUE;
        SetEvent(m_hReceive);
        SetEvent(m_hHangup);
    }

    HRESULT QueryInterface(const IID& identifier, void** object) override {
        const bool isKnown = m_kind == Kind::Waitable && identifier == IID_ISerialWait;
        *object = isKnown ? static_cast<ISerialWait*>(this) : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }

    BOOL Open(LPCSTR) override { return TRUE; }
    BOOL Close() override { return TRUE; }
    BOOL IsOpen() override { return TRUE; }
    BOOL AttachHandle(HANDLE, BOOL) override { return FALSE; }
    HANDLE DetachHandle() override { return INVALID_HANDLE_VALUE; }
    DWORD Write(LPCVOID buffer, DWORD count) override {
        m_calls.push_back("write " + std::string(static_cast<const char*>(buffer), count));
        m_dwWriteTick = GetTickCount();
        if (!m_answer.empty())
            Arrive(m_answer);
        return count;
    }
    DWORD Read(LPVOID buffer, DWORD count) override {
        const std::lock_guard lock(m_lock);
        ++m_nReads;
        std::string bytes = m_endlessRead;
        if (!m_reads.empty()) {
            bytes = m_reads.front();
            m_reads.pop_front();
        }
        const std::size_t length = std::min<std::size_t>(bytes.size(), count);
        std::memcpy(buffer, bytes.data(), length);
        if (length < bytes.size() && m_endlessRead.empty())
            m_reads.push_front(bytes.substr(length));
        if (m_reads.empty() && m_endlessRead.empty() && !m_bVanished)
            ResetEvent(m_hReceive);
        return static_cast<DWORD>(length);
    }
    BOOL SetBufferSizes(DWORD, DWORD) override { return TRUE; }
    DWORD GetQueueInfo(DWORD selector) override { return selector == _QUE_TXFREE ? m_dwRoom : 0; }
    BOOL Flush(DWORD selector) override {
        m_calls.push_back("flush " + std::to_string(selector));
        return TRUE;
    }
    BOOL SetDataFormat(DWORD baudRate, DWORD, DWORD, DWORD) override {
        m_calls.push_back("format " + std::to_string(static_cast<std::int32_t>(baudRate)));
        return TRUE;
    }
    BOOL GetDataFormat(LPDWORD, LPDWORD, LPDWORD, LPDWORD) override { return FALSE; }
    BOOL SetLine(DWORD, BOOL) override { return TRUE; }
    DWORD GetLineStatus() override { return 0; }
    BOOL SetFlowControl(DWORD) override { return TRUE; }
    DWORD GetFlowControl() override { return 0; }
    HWND SetCommNotifyWnd(HWND) override { return nullptr; }
    BOOL CommNotifyControl(DWORD) override { return TRUE; }
    HWND SetModemMonitorWnd(HWND) override { return nullptr; }

    HANDLE GetReceiveHandle() override { return m_hReceive; }
    HANDLE GetHangupHandle() override { return m_hHangup; }
    HANDLE GetProgressEvent() override { return m_hReceive; }
    BOOL IsDeviceGone() override {
        const std::lock_guard lock(m_lock);
        return m_bVanished && m_reads.empty();
    }
    BOOL Drain(DWORD noProgress) override {
        m_calls.push_back("drain " + std::to_string(noProgress));
        return TRUE;
    }

  private:
    const Kind m_kind;
    std::mutex m_lock;
    CUniqueHandle m_hReceive{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    CUniqueHandle m_hHangup{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    BOOL m_bVanished = FALSE;
};

// A modem on a substitute port, of whichever kind.
template <class Modem> class CTestOn : public Modem {
  public:
    explicit CTestOn(ISerial* serial) { Modem::TakeSerial(serial); }
    using Modem::m_dwLastResponse;
    using Modem::WaitWithoutReading;
};

using CTestModem = CTestOn<CVModem>;
