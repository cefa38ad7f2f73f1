// The loop waits until a notification may be sent, finds the next event and sends it. What can be
// seen at the port comes before what the driver reports, so that nothing is lost that happened
// while a notification was being processed, or was held up.
#include "CORE/VXSerial/Lib/CommNotifyThread.h"
#include "CORE/VXSerial/Lib/OverlappedRecord.h"
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/CommEvents.h"
#include "platform/Error.h"

#include <utility>

namespace {

// After two waits on the port that failed at once: it may go on like that, with a report each.
constexpr DWORD kPauseAfterFailures = 1000;

// The send as reports have always shown it; here the object's address needs a wider type.
constexpr LPCSTR kSendExpression =
    "SendMessageCallback(m_hCommNotifyWnd, WM_VXCOMMNOTIFY, 0, dwEvent, "
    "(SENDASYNCPROC)SendAsyncProc, (DWORD)this)";

} // namespace

HWND CCommNotifyThread::SetCommNotifyWnd(HWND hWnd) {
    const HWND former = m_hCommNotifyWnd.exchange(hWnd);
    if (IsWindow(hWnd))
        DEBUG_VERIFY(StartCommNotifyThread());
    else
        DEBUG_VERIFY(StopCommNotifyThread());
    return former;
}

BOOL CCommNotifyThread::CommNotifyControl(DWORD dwCode) {
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
void CCommNotifyThread::ChangeSuspension(DWORD dwCode) {
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

void CCommNotifyThread::SendAsyncProc(HWND, UINT, ULONG_PTR dwData, LRESULT) {
    reinterpret_cast<CVSerial*>(dwData)->CommNotifyControl(_NOTIFY_REARM);
}

BOOL CCommNotifyThread::StartCommNotifyThread() {
    if (!m_Serial.IsOpen() || !m_bCommNotifyEnabled || !IsWindow(m_hCommNotifyWnd) ||
        m_hCommNotifyThread)
        return TRUE;
    if (!CreateCommNotifyEvents())
        return FALSE;
    m_bCommNotifyStopping = false;
    m_hCommNotifyThread.Reset(
        m_Serial.CreateOwnThread(CommNotifyThreadProc, this, CREATE_SUSPENDED));
    if (!m_hCommNotifyThread) {
        ReportLastError("CVSerial::StartCommNotifyThread() - CreateThread()");
        CloseCommNotifyEvents();
        return FALSE;
    }
    DEBUG_VERIFY(SetThreadPriority(m_hCommNotifyThread, THREAD_PRIORITY_BELOW_NORMAL));
    DEBUG_VERIFY(ResumeThread(m_hCommNotifyThread) != 0xFFFFFFFF);
    return TRUE;
}

BOOL CCommNotifyThread::CreateCommNotifyEvents() {
    DEBUG_ASSERT(!m_hCommNotifyThreadEndEvent);
    m_hCommNotifyThreadEndEvent.Reset(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    if (!m_hCommNotifyThreadEndEvent)
        return ReportLastError("CVSerial::StartCommNotifyThread() - CreateEvent()");
    const CLock lock(m_NotifyCritSec);
    DEBUG_ASSERT(!m_hCommNotifyEnableEvent);
    m_hCommNotifyEnableEvent.Reset(CreateEventA(nullptr, TRUE, TRUE, nullptr));
    if (!m_hCommNotifyEnableEvent) {
        ReportLastError("CVSerial::StartCommNotifyThread() - CreateEvent()");
        DEBUG_VERIFY(CloseHandle(m_hCommNotifyThreadEndEvent));
        return FALSE;
    }
    return TRUE;
}

BOOL CCommNotifyThread::StopCommNotifyThread() {
    if (!m_hCommNotifyThread)
        return TRUE;
    DEBUG_ASSERT(m_hCommNotifyThreadEndEvent);
    // First, for a thread that is about to set the mask which is cleared below.
    m_bCommNotifyStopping = true;
    DEBUG_VERIFY(SetEvent(m_hCommNotifyThreadEndEvent));
    DEBUG_VERIFY(SetCommMask(m_hPort, 0));
    if (WaitForSingleObject(m_hCommNotifyThread, CVSerial::kThreadEndTimeout) != WAIT_OBJECT_0) {
        DebugReport("CVSerial::StopCommNotifyThread() - Forcibly terminating the comm event "
                    "thread");
        DEBUG_VERIFY(TerminateThread(m_hCommNotifyThread, 0));
    }
    DEBUG_VERIFY(CloseHandle(m_hCommNotifyThread));
    CloseCommNotifyEvents();
    return TRUE;
}

void CCommNotifyThread::CloseCommNotifyEvents() {
    const CLock lock(m_NotifyCritSec);
    DEBUG_VERIFY(CloseHandle(m_hCommNotifyEnableEvent));
    DEBUG_VERIFY(CloseHandle(m_hCommNotifyThreadEndEvent));
}

DWORD CCommNotifyThread::CommNotifyThreadProc(LPVOID pObject) {
    DEBUG_ASSERT(pObject);
    if (!pObject)
        return 0;
    auto* const object = static_cast<CCommNotifyThread*>(pObject);
    object->Run();
    object->m_Serial.LetGo();
    return 0;
}

void CCommNotifyThread::Run() {
    bool hasCarrier = HasCarrier();
    bool hasFailed = false;
    while (AwaitNotifyEnabled()) {
        const DWORD dwEvent = FindCommEvent(hasCarrier);
        if (dwEvent == 0) {
            if (std::exchange(hasFailed, true) &&
                WaitForSingleObject(m_hCommNotifyThreadEndEvent, kPauseAfterFailures) ==
                    WAIT_OBJECT_0)
                return;
            continue;
        }
        hasFailed = false;
        // A change that is not told now is found again, so it is remembered only when it is told.
        const bool hasCarrierNow = (dwEvent & EV_RLSD) != 0 ? HasCarrier() : hasCarrier;
        if (SendCommNotify(dwEvent))
            hasCarrier = hasCarrierNow;
    }
}

// Waits until a notification may be sent. False when the thread is to end. Retrieving messages is
// also what runs SendAsyncProc.
bool CCommNotifyThread::AwaitNotifyEnabled() {
    const HANDLE waitSet[] = {m_hCommNotifyThreadEndEvent, m_hCommNotifyEnableEvent};
    for (;;) {
        const DWORD result = MsgWaitForMultipleObjects(2, waitSet, FALSE, INFINITE, QS_ALLINPUT);
        if (result == WAIT_OBJECT_0 + 1)
            return true;
        if (result == WAIT_OBJECT_0)
            return false;
        if (result != WAIT_OBJECT_0 + 2) {
            DebugReport("CVSerial::CommNotifyThreadProc() - MsgWaitForMultipleObject() returned "
                        "unexpected valued %ld",
                        static_cast<long>(static_cast<LONG>(result)));
            return false;
        }
        MSG message = {};
        PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
    }
}

bool CCommNotifyThread::HasCarrier() {
    DWORD dwStatus = 0;
    DEBUG_VERIFY(GetCommModemStatus(m_hPort, &dwStatus));
    return (dwStatus & MS_RLSD_ON) != 0;
}

// The next event: what can be seen now, else what the driver reports. 0 when the wait for that
// failed, or was ended for the thread's end.
DWORD CCommNotifyThread::FindCommEvent(bool hadCarrier) {
    DWORD dwEvent = 0;
    COMSTAT sComStat = {};
    DEBUG_VERIFY(ClearCommError(m_hPort, &dwEvent, &sComStat));
    if (HasCarrier() != hadCarrier)
        return EV_RLSD;
    return sComStat.cbInQue != 0 ? EV_RXCHAR : WaitForCommEvent(hadCarrier);
}

DWORD CCommNotifyThread::WaitForCommEvent(bool hadCarrier) {
    DEBUG_VERIFY(SetCommMask(m_hPort, EV_RXCHAR | EV_RLSD | EV_ERR));
    if (m_bCommNotifyStopping)
        return 0;
    // The driver reports the changes from the setting of the mask on; this is one from before.
    if (HasCarrier() != hadCarrier)
        return EV_RLSD;
    if (m_bOverlapped)
        return WaitOverlapped();
    DWORD dwEvent = 0;
    // The report carries this very text.
    DEBUG_VERIFY(::WaitCommEvent(m_hPort, &dwEvent, NULL)); // NOLINT(*-use-nullptr)
    return dwEvent;
}

DWORD CCommNotifyThread::WaitOverlapped() {
    COverlappedRecord& record = COverlappedRecord::ForEvents();
    DWORD dwEvent = 0;
    DWORD dwTransferred = 0;
    if (!WaitCommEvent(m_hPort, &dwEvent, record.Get())) {
        if (GetLastError() != ERROR_IO_PENDING)
            DebugReport("CVSerial::CommNotifyThreadProc() - WaitCommEvent() failed");
        else if (!GetOverlappedResult(m_hPort, record.Get(), &dwTransferred, TRUE))
            ReportLastError("CVSerial::CommNotifyThreadProc() - GetOverlappedResult()");
    }
    record.Reset();
    return dwEvent;
}

// False when notifications have been suspended meanwhile. A window that is gone counts as told.
bool CCommNotifyThread::SendCommNotify(DWORD dwEvent) {
    const CLock lock(m_NotifyCritSec);
    if (WaitForSingleObject(m_hCommNotifyEnableEvent, 0) != WAIT_OBJECT_0)
        return false;
    DEBUG_VERIFY(ResetEvent(m_hCommNotifyEnableEvent));
    if (!SendMessageCallbackA(m_hCommNotifyWnd, WM_VXCOMMNOTIFY, 0, dwEvent, SendAsyncProc,
                              reinterpret_cast<ULONG_PTR>(&m_Serial)))
        diagnostics::ReportFailedVerify(kReportLines + __LINE__, kReportFile, kSendExpression);
    return true;
}
