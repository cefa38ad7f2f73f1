// CModemMonitorThread: the modem-monitor thread of a CVSerial, which posts the line status to a
// window once a second, and its receiver.
//
// The thread lives while the port is open and its receiver is a live window. Owned by its CVSerial,
// under whose port lock the operations are called; the thread takes no lock.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/Message.h"

#include <atomic>

class CVSerial;

class CModemMonitorThread {
  public:
    explicit CModemMonitorThread(CVSerial& serial) : m_Serial(serial) {}

    // What ISerial's operation of this name says.
    HWND SetModemMonitorWnd(HWND hWnd);

    // Starts the thread if its conditions hold and it does not run. FALSE when that fails.
    BOOL StartModemMonitorThread();
    // Returns when the thread has ended, or has been given up. Always TRUE.
    BOOL StopModemMonitorThread();

  private:
    static constexpr const char* kReportFile = "Serial";
    static constexpr int kReportLines = 2000;

    static DWORD ModemMonitorThreadProc(LPVOID pObject);
    void Run();
    DWORD GetLineStatus();

    CVSerial& m_Serial;
    std::atomic<HWND> m_hModemMonitorWnd = nullptr;
    CUniqueHandle m_hModemMonitorThread;
    CUniqueHandle m_hModemMonitorThreadEndEvent;
};
