#include "CORE/VXSerial/Lib/Serial.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"
#include "platform/File.h"

#include <new>

HRESULT CreateSerial(ISerial** lppSerial, IUnknown* pUnkOuter) {
    if (!lppSerial)
        return E_INVALIDARG;
    *lppSerial = nullptr;
    auto* const serial = new (std::nothrow) CVSerial(pUnkOuter);
    if (!serial)
        return E_OUTOFMEMORY;
    *lppSerial = serial;
    return S_OK;
}

CVSerial::CVSerial(IUnknown* pUnkOuter)
    : CVComponent(pUnkOuter), CVDelegated<ISerial>(ControllingObject()), CVDelegated<ISerialWait>(
                                                                             ControllingObject()) {}

void CVSerial::operator delete(CVSerial* serial, std::destroying_delete_t) {
    serial->End();
}

void CVSerial::End() {
    DEBUG_VERIFY(Close());
    LetGo();
}

void CVSerial::LetGo() {
    if (--m_nUsers > 0)
        return;
    this->~CVSerial();
    ::operator delete(this);
}

void* CVSerial::FindInterface(const IID& riid) {
    if (riid == IID_ISerial)
        return static_cast<ISerial*>(this);
    if (riid == IID_ISerialWait)
        return static_cast<ISerialWait*>(this);
    return nullptr;
}

BOOL CVSerial::Open(LPCSTR szPort) {
    DEBUG_ASSERT(szPort && szPort[0]);
    const CLock lock(m_CritSec);
    if (IsOpen()) {
        DebugReport("CVSerial::Open() - Close the current port first, Bozo");
        return FALSE;
    }
    const LPCSTR path = szPort ? szPort : "";
    m_bOverlapped = TRUE;
    m_hPort = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
    if (!IsOpen()) {
        DebugReport("CVSerial::Open() - Could not open the port \"%s\" - GetLastError() = %ld",
                    path, static_cast<long>(GetLastError()));
        return FALSE;
    }
    DEBUG_VERIFY(EscapeCommFunction(m_hPort, SETDTR));
    DEBUG_VERIFY(Reset());
    if (!StartThreads()) {
        DebugReport("CVSerial::Open() - Failure to start the threads");
        DEBUG_VERIFY(Close());
        return FALSE;
    }
    m_wLineState |= LINE_DTR;
    return TRUE;
}

BOOL CVSerial::Close() {
    const CLock lock(m_CritSec);
    DEBUG_VERIFY(StopThreads());
    if (IsOpen()) {
        DEBUG_VERIFY(EscapeCommFunction(m_hPort, CLRDTR));
        DEBUG_VERIFY(CloseHandle(m_hPort));
        m_hPort = INVALID_HANDLE_VALUE;
    }
    m_wLineState &= static_cast<WORD>(~LINE_DTR);
    return TRUE;
}

BOOL CVSerial::IsOpen() {
    return m_hPort != INVALID_HANDLE_VALUE;
}

BOOL CVSerial::AttachHandle(HANDLE hPort, BOOL bOverlapped) {
    const CLock lock(m_CritSec);
    DEBUG_VERIFY(Close());
    m_hPort = hPort;
    m_bOverlapped = bOverlapped;
    DEBUG_VERIFY(Reset());
    if (!StartThreads()) {
        m_hPort = INVALID_HANDLE_VALUE;
        return FALSE;
    }
    m_wLineState |= LINE_DTR;
    return TRUE;
}

HANDLE CVSerial::DetachHandle() {
    const CLock lock(m_CritSec);
    DEBUG_VERIFY(StopThreads());
    m_wLineState &= static_cast<WORD>(~LINE_DTR);
    return m_hPort.exchange(INVALID_HANDLE_VALUE);
}

HWND CVSerial::SetCommNotifyWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    return m_CommNotify.SetCommNotifyWnd(hWnd);
}

HWND CVSerial::SetModemMonitorWnd(HWND hWnd) {
    const CLock lock(m_CritSec);
    return m_ModemMonitor.SetModemMonitorWnd(hWnd);
}

BOOL CVSerial::CommNotifyControl(DWORD dwCode) {
    // The comm-event thread may be here while the holder of the port lock waits for its end.
    if (dwCode == _NOTIFY_REARM)
        return m_CommNotify.CommNotifyControl(dwCode);
    const CLock lock(m_CritSec);
    return m_CommNotify.CommNotifyControl(dwCode);
}
