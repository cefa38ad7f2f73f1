#include "CORE/VXSerial/Lib/ModemMonitorThread.h"
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"

namespace {

constexpr DWORD kInterval = 1000;

// Under the name by which the reports know it.
BOOL PostMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return PostMessageA(hWnd, uMsg, wParam, lParam);
}

} // namespace

HWND CModemMonitorThread::SetModemMonitorWnd(HWND hWnd) {
    const HWND former = m_hModemMonitorWnd.exchange(hWnd);
    if (IsWindow(hWnd))
        DEBUG_VERIFY(StartModemMonitorThread());
    else
        DEBUG_VERIFY(StopModemMonitorThread());
    return former;
}

BOOL CModemMonitorThread::StartModemMonitorThread() {
    if (!m_Serial.IsOpen() || !IsWindow(m_hModemMonitorWnd) || m_hModemMonitorThread)
        return TRUE;
    DEBUG_ASSERT(!m_hModemMonitorThreadEndEvent);
    m_hModemMonitorThreadEndEvent.Reset(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    if (!m_hModemMonitorThreadEndEvent)
        return ReportLastError("CVSerial::StartModemMonitorThread() - CreateEvent()");
    m_hModemMonitorThread.Reset(
        m_Serial.CreateOwnThread(ModemMonitorThreadProc, this, CREATE_SUSPENDED));
    if (!m_hModemMonitorThread) {
        ReportLastError("CVSerial::StartModemMonitorThread() - CreateThread()");
        DEBUG_VERIFY(CloseHandle(m_hModemMonitorThreadEndEvent));
        return FALSE;
    }
    DEBUG_VERIFY(SetThreadPriority(m_hModemMonitorThread, THREAD_PRIORITY_LOWEST));
    DEBUG_VERIFY(ResumeThread(m_hModemMonitorThread) != 0xFFFFFFFF);
    return TRUE;
}

BOOL CModemMonitorThread::StopModemMonitorThread() {
    if (!m_hModemMonitorThread)
        return TRUE;
    DEBUG_ASSERT(m_hModemMonitorThreadEndEvent);
    DEBUG_VERIFY(SetEvent(m_hModemMonitorThreadEndEvent));
    if (WaitForSingleObject(m_hModemMonitorThread, CVSerial::kThreadEndTimeout) != WAIT_OBJECT_0) {
        DebugReport("CVSerial::StopModemMonitorThread() - Forcibly terminating the modem monitor "
                    "thread");
        DEBUG_VERIFY(TerminateThread(m_hModemMonitorThread, 0));
    }
    DEBUG_VERIFY(CloseHandle(m_hModemMonitorThread));
    DEBUG_VERIFY(CloseHandle(m_hModemMonitorThreadEndEvent));
    return TRUE;
}

DWORD CModemMonitorThread::ModemMonitorThreadProc(LPVOID pObject) {
    DEBUG_ASSERT(pObject);
    if (!pObject)
        return 0;
    auto* const object = static_cast<CModemMonitorThread*>(pObject);
    object->Run();
    object->m_Serial.LetGo();
    return 0;
}

void CModemMonitorThread::Run() {
    const HANDLE end = m_hModemMonitorThreadEndEvent;
    while (WaitForSingleObject(end, kInterval) == WAIT_TIMEOUT)
        DEBUG_VERIFY(PostMessage(m_hModemMonitorWnd, WM_VXMODEMMONITOR, 0, GetLineStatus()));
}

DWORD CModemMonitorThread::GetLineStatus() {
    return m_Serial.GetLineStatus();
}
