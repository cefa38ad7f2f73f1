// The receivers of CVSerial's notifications, and their control.
#include "CORE/VXSerial/Lib/Serial.h"

#include "diagnostics/DebugReport.h"

HWND CVSerial::SetCommNotifyWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    const HWND former = m_hCommNotifyWnd.exchange(hWnd);
    if (IsWindow(hWnd))
        DEBUG_VERIFY(StartCommNotifyThread());
    else
        DEBUG_VERIFY(StopCommNotifyThread());
    return former;
}

HWND CVSerial::SetModemMonitorWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    const HWND former = m_hModemMonitorWnd.exchange(hWnd);
    if (IsWindow(hWnd))
        DEBUG_VERIFY(StartModemMonitorThread());
    else
        DEBUG_VERIFY(StopModemMonitorThread());
    return former;
}

BOOL CVSerial::CommNotifyControl(DWORD dwCode) {
    if (dwCode == _NOTIFY_REARM) {
        // The comm-event thread may be here while the holder of the port lock waits for its end.
        ChangeSuspension(dwCode);
        return TRUE;
    }
    const CLock lock(m_CritSec);
    if (dwCode == _NOTIFY_DISABLE) {
        m_bCommNotifyEnabled = FALSE;
        DEBUG_VERIFY(StopCommNotifyThread());
    } else if (dwCode == _NOTIFY_ENABLE) {
        m_bCommNotifyEnabled = TRUE;
        DEBUG_VERIFY(StartCommNotifyThread());
    } else {
        ChangeSuspension(dwCode);
    }
    return TRUE;
}

// Counts suspensions, and lets the next notification out once there are none.
void CVSerial::ChangeSuspension(DWORD dwCode) {
    const CLock lock(m_NotifyCritSec);
    if (dwCode == _NOTIFY_SUSPEND) {
        InterlockedIncrement(&m_lCommNotifySuspend);
        if (m_hCommNotifyEnableEvent)
            DEBUG_VERIFY(ResetEvent(m_hCommNotifyEnableEvent));
        return;
    }
    if (dwCode != _NOTIFY_RESUME && dwCode != _NOTIFY_REARM)
        return;
    if (dwCode == _NOTIFY_RESUME && m_lCommNotifySuspend > 0)
        InterlockedDecrement(&m_lCommNotifySuspend);
    if (m_lCommNotifySuspend == 0 && m_hCommNotifyEnableEvent)
        DEBUG_VERIFY(SetEvent(m_hCommNotifyEnableEvent));
}

void CVSerial::SendAsyncProc(HWND, UINT, ULONG_PTR dwData, LRESULT) {
    reinterpret_cast<CVSerial*>(dwData)->CommNotifyControl(_NOTIFY_REARM);
}
