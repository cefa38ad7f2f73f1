// Channels that take the place of a serial port under CVModem: the reads are given beforehand, what
// is done to the channel is recorded in order. They belong to the test; releasing them only counts.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/UniqueHandle.h"
#include "platform/Clock.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

// A channel that can only be polled.
class CSubstituteSerial : public ISerial {
  public:
    virtual ~CSubstituteSerial() = default;

    // What the next reads give, one entry a read; an empty one is a read that finds nothing.
    std::deque<std::string> m_reads;
    // What the reads after those give, every time.
    std::string m_endlessRead;
    // An answer that is put into the reads by every write.
    std::string m_answer;

    std::vector<std::string> m_calls;
    DWORD m_dwWriteLimit = 0xFFFFFFFF;
    DWORD m_dwRoom = 1000;
    DWORD m_dwQueued = 0;
    DWORD m_dwWriteTick = 0;
    BOOL m_bOpens = TRUE;
    BOOL m_bOpen = FALSE;
    BOOL m_bTakesSettings = TRUE;
    int m_nReads = 0;
    int m_nReferences = 1;

    HRESULT QueryInterface(const IID&, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return static_cast<ULONG>(++m_nReferences); }
    ULONG Release() override { return static_cast<ULONG>(--m_nReferences); }

    BOOL Open(LPCSTR port) override {
        Record("open " + std::string(port));
        m_bOpen = m_bOpens;
        return m_bOpens;
    }
    BOOL Close() override {
        Record("close");
        m_bOpen = FALSE;
        return TRUE;
    }
    BOOL IsOpen() override { return m_bOpen; }
    BOOL AttachHandle(HANDLE, BOOL) override { return FALSE; }
    HANDLE DetachHandle() override { return INVALID_HANDLE_VALUE; }
    DWORD Write(LPCVOID buffer, DWORD count) override {
        Record("write " + std::string(static_cast<const char*>(buffer), count));
        m_dwWriteTick = GetTickCount();
        if (!m_answer.empty())
            m_reads.push_back(m_answer);
        return std::min(count, m_dwWriteLimit);
    }
    DWORD Read(LPVOID buffer, DWORD count) override {
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
        return static_cast<DWORD>(length);
    }
    BOOL SetBufferSizes(DWORD, DWORD) override { return TRUE; }
    DWORD GetQueueInfo(DWORD selector) override {
        return selector == _QUE_TXFREE ? m_dwRoom : selector == _QUE_TXCOUNT ? m_dwQueued : 0;
    }
    BOOL Flush(DWORD selector) override {
        Record("flush " + std::to_string(selector));
        return TRUE;
    }
    BOOL SetDataFormat(DWORD baud, DWORD parity, DWORD size, DWORD stop) override {
        Record("format " + std::to_string(baud) + " " + std::to_string(parity) + " " +
               std::to_string(size) + " " + std::to_string(stop));
        return m_bTakesSettings;
    }
    BOOL GetDataFormat(LPDWORD baud, LPDWORD parity, LPDWORD size, LPDWORD stop) override {
        if (parity || size || stop)
            return FALSE;
        *baud = 57600;
        return m_bTakesSettings;
    }
    BOOL SetLine(DWORD line, BOOL state) override {
        Record("line " + std::to_string(line) + (state ? " on" : " off"));
        return TRUE;
    }
    DWORD GetLineStatus() override { return 0; }
    BOOL SetFlowControl(DWORD flowControl) override {
        Record("flow " + std::to_string(flowControl));
        return TRUE;
    }
    DWORD GetFlowControl() override { return 0; }
    HWND SetCommNotifyWnd(HWND) override { return nullptr; }
    BOOL CommNotifyControl(DWORD) override { return TRUE; }
    HWND SetModemMonitorWnd(HWND) override { return nullptr; }

  private:
    void Record(const std::string& call) { m_calls.push_back(call); }
};

// A channel that can be waited for. Bytes may arrive from another thread.
class CWaitableSerial final : public CSubstituteSerial, public ISerialWait {
  public:
    CWaitableSerial() : m_hReceive(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

    void Arrive(const std::string& bytes) {
        const std::lock_guard lock(m_lock);
        m_reads.push_back(bytes);
        SetEvent(m_hReceive);
    }
    void Vanish() {
        const std::lock_guard lock(m_lock);
        m_bVanished = TRUE;
        SetEvent(m_hReceive);
    }

    HRESULT QueryInterface(const IID& identifier, void** object) override {
        if (!(identifier == IID_ISerialWait))
            return CSubstituteSerial::QueryInterface(identifier, object);
        AddRef();
        *object = static_cast<ISerialWait*>(this);
        return S_OK;
    }
    ULONG AddRef() override { return CSubstituteSerial::AddRef(); }
    ULONG Release() override { return CSubstituteSerial::Release(); }

    DWORD Read(LPVOID buffer, DWORD count) override {
        const std::lock_guard lock(m_lock);
        const DWORD read = CSubstituteSerial::Read(buffer, count);
        if (m_reads.empty() && !m_bVanished)
            ResetEvent(m_hReceive);
        return read;
    }
    HANDLE GetReceiveHandle() override {
        return m_bOpen ? static_cast<HANDLE>(m_hReceive) : nullptr;
    }
    HANDLE GetHangupHandle() override { return GetReceiveHandle(); }
    HANDLE GetProgressEvent() override { return GetReceiveHandle(); }
    BOOL IsDeviceGone() override {
        const std::lock_guard lock(m_lock);
        return m_bVanished && m_reads.empty();
    }
    BOOL Drain(DWORD noProgress) override { return noProgress == 2000; }

  private:
    std::mutex m_lock;
    CUniqueHandle m_hReceive;
    BOOL m_bVanished = FALSE;
};
