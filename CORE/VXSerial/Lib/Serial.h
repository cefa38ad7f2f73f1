// CVSerial: the byte channel of a serial port, with its line settings, queues and threads.
//
// Made by CreateSerial and held through ISerial; whoever would rather block than poll asks it for
// ISerialWait. An outer object that aggregates it gets at the inner face, to query and delete it,
// by dynamic_cast<CVComponent*> of the interface. Deletion closes the port.
//
// Any thread may call the operations of ISerial. They hold the port lock from start to end, also
// while Write waits for space; IsOpen and GetLineStatus take no lock. The settings belong to the
// object, not to the open port: they survive closing and are applied at every opening.
//
// The write thread lives while the port is open. It takes chunks of a quarter of the transmit
// buffer and writes them to the port.
//
// The comm-event thread and the modem-monitor thread are classes of their own, which see to their
// receivers too. No thread ever takes the port lock, so its holder can stop them all and wait for
// their ends.
//
// A thread that a driver call holds is given up after a time: from then on all its waits fail, so
// it ends once it comes back. The object's memory stays until then.
#pragma once

#include "CORE/VXSerial/Lib/CommBuffer.h"
#include "CORE/VXSerial/Lib/CommNotifyThread.h"
#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "CORE/VXSerial/Lib/ModemMonitorThread.h"
#include "common/Component.h"
#include "common/CriticalSection.h"
#include "common/UniqueHandle.h"
#include "platform/Comm.h"
#include "platform/Thread.h"

#include <atomic>
#include <new>

class CVSerial final : public CVComponent,
                       public CVDelegated<ISerial>,
                       public CVDelegated<ISerialWait> {
  public:
    explicit CVSerial(IUnknown* pUnkOuter);
    ~CVSerial() override = default;
    // Closes the port, and leaves the rest to the last thread that still uses the object.
    static void operator delete(CVSerial* serial, std::destroying_delete_t);

    // ISerial
    BOOL Open(LPCSTR szPort) override;
    BOOL Close() override;
    BOOL IsOpen() override;
    BOOL AttachHandle(HANDLE hPort, BOOL bOverlapped) override;
    HANDLE DetachHandle() override;
    DWORD Write(LPCVOID pBuffer, DWORD dwCount) override;
    DWORD Read(LPVOID pBuffer, DWORD dwCount) override;
    BOOL SetBufferSizes(DWORD dwRXQueueSize, DWORD dwTXBufferSize) override;
    DWORD GetQueueInfo(DWORD dwSelector) override;
    BOOL Flush(DWORD dwSelector) override;
    BOOL SetDataFormat(DWORD dwBaudRate, DWORD dwParity, DWORD dwByteSize,
                       DWORD dwStopBits) override;
    BOOL GetDataFormat(LPDWORD lpBaudRate, LPDWORD lpParity, LPDWORD lpByteSize,
                       LPDWORD lpStopBits) override;
    BOOL SetLine(DWORD dwLine, BOOL bState) override;
    DWORD GetLineStatus() override;
    BOOL SetFlowControl(DWORD dwFlowControl) override;
    DWORD GetFlowControl() override;
    HWND SetCommNotifyWnd(HWND hWnd) override;
    BOOL CommNotifyControl(DWORD dwCode) override;
    HWND SetModemMonitorWnd(HWND hWnd) override;

    // ISerialWait
    HANDLE GetReceiveHandle() override;
    HANDLE GetHangupHandle() override;
    HANDLE GetProgressEvent() override;
    BOOL IsDeviceGone() override;
    BOOL Drain(DWORD dwNoProgress) override;

    // For the object's own threads: starts one, which keeps the object until it lets go of it; null
    // when that fails.
    HANDLE CreateOwnThread(LPTHREAD_START_ROUTINE routine, LPVOID argument, DWORD dwFlags);
    void LetGo();

    // How long the end of a thread is waited for, in milliseconds.
    static constexpr DWORD kThreadEndTimeout = 30000;

  protected:
    void* FindInterface(const IID& riid) override;

  private:
    // The checks of all of this class's files report under one name.
    static constexpr const char* kReportFile = "Serial";

    // What has been accepted for sending and has not left: the places it is in.
    struct Pending {
        DWORD buffered; // in the transmit buffer
        DWORD inHand;   // in the write thread's hands
        DWORD driver;   // in the driver's output queue
        DWORD Count() const { return buffered + inHand + driver; }
    };

    // Configuration; the port lock is held.
    BOOL Reset();
    BOOL ResetQueueSizes(DWORD dwCurrentRXSize);
    BOOL ResetLineSettings(DCB& dcb);
    BOOL ResetTimeouts();
    bool HasOtherSettings(const DCB& dcb) const;
    void StoreFlowControl(DCB& dcb) const;
    DWORD CountReceived();
    DWORD CountUnsent();

    // Transfer
    bool WaitForSpace(bool& isOverflowReported);
    DWORD ReadOverlapped(LPVOID pBuffer, DWORD dwCount);

    // Threads; the port lock is held, but by the write thread's own.
    void End();
    BOOL StartThreads();
    BOOL StopThreads();
    BOOL StartCommNotifyThread() { return m_CommNotify.StartCommNotifyThread(); }
    BOOL StopCommNotifyThread() { return m_CommNotify.StopCommNotifyThread(); }
    BOOL StartModemMonitorThread() { return m_ModemMonitor.StartModemMonitorThread(); }
    BOOL StopModemMonitorThread() { return m_ModemMonitor.StopModemMonitorThread(); }
    BOOL StartWriteThread();
    BOOL StopWriteThread();
    BOOL CreateWriteEvents();
    static DWORD WriteThreadProc(LPVOID pObject);
    DWORD RunWriteThread();
    DWORD WriteNextChunk(BYTE* chunk, DWORD dwSize);
    DWORD TakeChunk(BYTE* chunk, DWORD dwSize);
    DWORD WriteOverlapped(BYTE* chunk, DWORD dwSize);
    DWORD WritePlain(BYTE* chunk, DWORD dwSize);

    // Waiting
    bool CountPending(Pending& pending);
    DWORD GetLineRate();

    std::atomic<int> m_nUsers = 1; // the owner and the threads
    std::atomic<WORD> m_wLineState = 0;
    BOOL m_bOverlapped = FALSE;
    std::atomic<HANDLE> m_hPort = INVALID_HANDLE_VALUE;
    CUniqueHandle m_hWriteThread;
    CUniqueHandle m_hWriteThreadEndEvent;
    CUniqueHandle m_hProgressEvent;
    CCommNotifyThread m_CommNotify{*this, m_hPort, m_bOverlapped};
    CModemMonitorThread m_ModemMonitor{*this};
    DWORD m_dwRXQueueSize = 4096;
    DWORD m_dwTXBufferSize = CVCommBuffer::DEFAULT_BUFFER_SIZE;
    DWORD m_dwBaudRate = 0; // 0: the port keeps the line settings that the driver has
    DWORD m_dwParity = NOPARITY;
    DWORD m_dwByteSize = 8;
    DWORD m_dwStopBits = ONESTOPBIT;
    DWORD m_dwFlowControl = _FLOW_NONE;
    CVCommBuffer m_cvTXBuffer;
    std::atomic<DWORD> m_dwInHand = 0;
    // Held while bytes go from the transmit buffer to the driver, so that a flush finds each byte
    // in one place or the other. Taken after the port lock.
    CCriticalSection m_HandOverCritSec;
    CCriticalSection m_CritSec;
};
