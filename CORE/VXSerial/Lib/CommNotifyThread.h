// CCommNotifyThread: the comm-event thread of a CVSerial, its receiver and its switches.
//
// The thread lives while the port is open, notification is enabled and its receiver is a live
// window. It sends one notification and resets the enable event, which SendAsyncProc, called in
// this thread when the window has done its part, sets again. A window that goes away leaves the
// event reset: the thread is at rest until it is given _NOTIFY_REARM.
//
// Owned by its CVSerial, under whose port lock the operations are called, but for
// CommNotifyControl(_NOTIFY_REARM), which the thread gives itself: that takes the notify lock
// alone, which is held for moments only. The thread never takes the port lock, so its holder can
// stop it and wait for its end. A thread that has seen neither its end event nor the cleared event
// mask sees m_bCommNotifyStopping before it begins a wait that nothing would end.
#pragma once

#include "common/CriticalSection.h"
#include "common/UniqueHandle.h"
#include "platform/Message.h"

#include <atomic>

class CVSerial;

class CCommNotifyThread {
  public:
    // The port handle and the kind of its transfers are the owner's.
    CCommNotifyThread(CVSerial& serial, const std::atomic<HANDLE>& port, const BOOL& overlapped)
        : m_Serial(serial), m_hPort(port), m_bOverlapped(overlapped) {}

    // What ISerial's operations of these names say.
    HWND SetCommNotifyWnd(HWND hWnd);
    BOOL CommNotifyControl(DWORD dwCode);

    // Starts the thread if its conditions hold and it does not run. FALSE when that fails.
    BOOL StartCommNotifyThread();
    // Returns when the thread has ended, or has been given up. Always TRUE.
    BOOL StopCommNotifyThread();

  private:
    static constexpr const char* kReportFile = "Serial";
    static constexpr int kReportLines = 1000;

    BOOL CreateCommNotifyEvents();
    void CloseCommNotifyEvents();
    static DWORD CommNotifyThreadProc(LPVOID pObject);
    void Run();
    bool AwaitNotifyEnabled();
    bool HasCarrier();
    DWORD FindCommEvent(bool hadCarrier);
    DWORD WaitForCommEvent(bool hadCarrier);
    DWORD WaitOverlapped();
    bool SendCommNotify(DWORD dwEvent);
    static void SendAsyncProc(HWND hWnd, UINT uMsg, ULONG_PTR dwData, LRESULT lResult);
    void ChangeSuspension(DWORD dwCode);

    CVSerial& m_Serial;
    const std::atomic<HANDLE>& m_hPort;
    const BOOL& m_bOverlapped;

    BOOL m_bCommNotifyEnabled = FALSE;
    std::atomic<HWND> m_hCommNotifyWnd = nullptr;
    CUniqueHandle m_hCommNotifyThread;
    CUniqueHandle m_hCommNotifyThreadEndEvent;
    std::atomic<bool> m_bCommNotifyStopping = false;

    // Guards what follows, so that no notification is sent once a suspension has returned. Taken
    // after the port lock.
    CCriticalSection m_NotifyCritSec;
    LONG m_lCommNotifySuspend = 0;
    CUniqueHandle m_hCommNotifyEnableEvent;
};
