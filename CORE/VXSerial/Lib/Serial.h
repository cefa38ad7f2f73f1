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
// The comm-event thread lives while the port is open, notification is enabled and its receiver is a
// live window. It sends one notification and resets the enable event, which SendAsyncProc, called
// in this thread when the window has done its part, sets again. A window that goes away leaves the
// event reset: the thread is at rest until it is given _NOTIFY_REARM. The modem-monitor thread
// lives while the port is open and its receiver is a live window.
//
// No thread ever takes the port lock, so its holder can stop them all and wait for their ends. For
// this _NOTIFY_REARM, which the comm-event thread gives itself, takes the notify lock alone; that
// one is held for moments only. And a thread that has seen neither its end event nor the cleared
// event mask sees m_bCommNotifyStopping before it begins a wait that nothing would end.
//
// A thread that a driver call holds is given up after a time: from then on all its waits fail, so
// it ends once it comes back. The object's memory stays until then.
#pragma once

#include "CORE/VXSerial/Lib/CommBuffer.h"
#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/Component.h"
#include "common/CriticalSection.h"
#include "common/UniqueHandle.h"
#include "platform/Comm.h"
#include "platform/Message.h"
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

  protected:
    void* FindInterface(const IID& riid) override;

  private:
    // The checks of all of this class's files report under one name.
    static constexpr const char* kReportFile = "Serial";

    // How long the end of a thread is waited for, in milliseconds.
    static constexpr DWORD THREAD_END_TIMEOUT = 30000;

    // What has been accepted for sending and has not left: the places it is in.
    struct SPending {
        DWORD dwBuffered; // in the transmit buffer
        DWORD dwInHand;   // in the write thread's hands
        DWORD dwDriver;   // in the driver's output queue
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

    // Threads; the port lock is held, but by the threads' own.
    HANDLE CreateOwnThread(LPTHREAD_START_ROUTINE routine, DWORD dwFlags);
    DWORD RunOwnThread(DWORD (CVSerial::*run)());
    void End();
    void LetGo();
    BOOL StartThreads();
    BOOL StopThreads();
    BOOL StartWriteThread();
    BOOL StopWriteThread();
    BOOL CreateWriteEvents();
    static DWORD WriteThreadProc(LPVOID pObject);
    DWORD RunWriteThread();
    DWORD WriteNextChunk(BYTE* chunk, DWORD dwSize);
    DWORD TakeChunk(BYTE* chunk, DWORD dwSize);
    DWORD WriteOverlapped(BYTE* chunk, DWORD dwSize);
    DWORD WritePlain(BYTE* chunk, DWORD dwSize);

    // Notification; the port lock is held, but by the threads' own.
    BOOL StartCommNotifyThread();
    BOOL CreateCommNotifyEvents();
    void CloseCommNotifyEvents();
    BOOL StopCommNotifyThread();
    static DWORD CommNotifyThreadProc(LPVOID pObject);
    DWORD RunCommNotifyThread();
    bool AwaitNotifyEnabled();
    bool HasCarrier();
    DWORD FindCommEvent(bool hadCarrier);
    DWORD WaitForCommEvent(bool hadCarrier);
    DWORD WaitOverlapped();
    bool SendCommNotify(DWORD dwEvent);
    static void SendAsyncProc(HWND hWnd, UINT uMsg, ULONG_PTR dwData, LRESULT lResult);
    void ChangeSuspension(DWORD dwCode);
    BOOL StartModemMonitorThread();
    BOOL StopModemMonitorThread();
    static DWORD ModemMonitorThreadProc(LPVOID pObject);
    DWORD RunModemMonitorThread();

    // Waiting
    bool CountPending(SPending& pending);
    DWORD GetLineRate();

    std::atomic<int> m_nUsers = 1; // the owner and the threads
    std::atomic<WORD> m_wLineState = 0;
    BOOL m_bOverlapped = FALSE;
    BOOL m_bCommNotifyEnabled = FALSE;
    LONG m_lCommNotifySuspend = 0;
    std::atomic<HWND> m_hCommNotifyWnd = nullptr;
    std::atomic<HWND> m_hModemMonitorWnd = nullptr;
    std::atomic<HANDLE> m_hPort = INVALID_HANDLE_VALUE;
    CUniqueHandle m_hWriteThread;
    CUniqueHandle m_hWriteThreadEndEvent;
    CUniqueHandle m_hProgressEvent;
    CUniqueHandle m_hCommNotifyEnableEvent;
    CUniqueHandle m_hCommNotifyThread;
    CUniqueHandle m_hCommNotifyThreadEndEvent;
    std::atomic<bool> m_bCommNotifyStopping = false;
    CUniqueHandle m_hModemMonitorThread;
    CUniqueHandle m_hModemMonitorThreadEndEvent;
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
    // Guards the suspend count and the enable event, so that no notification is sent once a
    // suspension has returned. Taken after the port lock.
    CCriticalSection m_NotifyCritSec;
    CCriticalSection m_CritSec;
};
