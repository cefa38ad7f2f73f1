// The modem-monitor thread of CVSerial: posts the line status to a window once a second.
#include "CORE/VXSerial/Lib/Serial.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

namespace {

constexpr DWORD INTERVAL = 1000;

// Under the name by which the reports know it.
BOOL PostMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return PostMessageA(hWnd, uMsg, wParam, lParam);
}

} // namespace

BOOL CVSerial::StartModemMonitorThread() {
    if (!IsOpen() || !IsWindow(m_hModemMonitorWnd) || m_hModemMonitorThread)
        return TRUE;
    DEBUG_ASSERT(!m_hModemMonitorThreadEndEvent);
    m_hModemMonitorThreadEndEvent.Reset(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    if (!m_hModemMonitorThreadEndEvent) {
        DebugReport("CVSerial::StartModemMonitorThread() - CreateEvent() failed - "
                    "GetLastError() = %ld",
                    static_cast<long>(GetLastError()));
        return FALSE;
    }
    m_hModemMonitorThread.Reset(CreateOwnThread(ModemMonitorThreadProc, CREATE_SUSPENDED));
    if (!m_hModemMonitorThread) {
        DebugReport("CVSerial::StartModemMonitorThread() - CreateThread() failed - "
                    "GetLastError() = %ld",
                    static_cast<long>(GetLastError()));
        DEBUG_VERIFY(CloseHandle(m_hModemMonitorThreadEndEvent));
        return FALSE;
    }
    DEBUG_VERIFY(SetThreadPriority(m_hModemMonitorThread, THREAD_PRIORITY_LOWEST));
    DEBUG_VERIFY(ResumeThread(m_hModemMonitorThread) != 0xFFFFFFFF);
    return TRUE;
}

BOOL CVSerial::StopModemMonitorThread() {
    if (!m_hModemMonitorThread)
        return TRUE;
    DEBUG_ASSERT(m_hModemMonitorThreadEndEvent);
    DEBUG_VERIFY(SetEvent(m_hModemMonitorThreadEndEvent));
    if (WaitForSingleObject(m_hModemMonitorThread, THREAD_END_TIMEOUT) != WAIT_OBJECT_0) {
        DebugReport("CVSerial::StopModemMonitorThread() - Forcibly terminating the modem monitor "
                    "thread");
        DEBUG_VERIFY(TerminateThread(m_hModemMonitorThread, 0));
    }
    DEBUG_VERIFY(CloseHandle(m_hModemMonitorThread));
    DEBUG_VERIFY(CloseHandle(m_hModemMonitorThreadEndEvent));
    return TRUE;
}

DWORD CVSerial::ModemMonitorThreadProc(LPVOID pObject) {
    DEBUG_ASSERT(pObject);
    return pObject ? static_cast<CVSerial*>(pObject)->RunOwnThread(&CVSerial::RunModemMonitorThread)
                   : 0;
}

DWORD CVSerial::RunModemMonitorThread() {
    const HANDLE end = m_hModemMonitorThreadEndEvent;
    while (WaitForSingleObject(end, INTERVAL) == WAIT_TIMEOUT)
        DEBUG_VERIFY(PostMessage(m_hModemMonitorWnd, WM_VXMODEMMONITOR, 0, GetLineStatus()));
    return 0;
}
