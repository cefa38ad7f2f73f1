// The receivers of CVSerial's notifications. A notification thread runs only while its receiver is
// a live window, and there are no windows here: what is set is kept, and no thread starts.
#include "CORE/VXSerial/Lib/Serial.h"

#include "platform/Thread.h"

#include <utility>

HWND CVSerial::SetCommNotifyWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    return std::exchange(m_hCommNotifyWnd, hWnd);
}

BOOL CVSerial::CommNotifyControl(DWORD dwCode) {
    const CLock lock(m_CritSec);
    switch (dwCode) {
    case _NOTIFY_DISABLE:
        m_bCommNotifyEnabled = FALSE;
        break;
    case _NOTIFY_ENABLE:
        m_bCommNotifyEnabled = TRUE;
        break;
    case _NOTIFY_RESUME:
        if (m_lCommNotifySuspend > 0)
            InterlockedDecrement(&m_lCommNotifySuspend);
        break;
    case _NOTIFY_SUSPEND:
        InterlockedIncrement(&m_lCommNotifySuspend);
        break;
    default: // _NOTIFY_REARM concerns a running notification thread only
        break;
    }
    return TRUE;
}

HWND CVSerial::SetModemMonitorWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    return std::exchange(m_hModemMonitorWnd, hWnd);
}
