#include "platform/Comm.h"
#include "platform/CommEvents.h"

#include "platform/Error.h"
#include "platform/comm/CommPort.h"
#include "platform/objects/HandleTable.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <iterator>

using platform::CCommPort;
using platform::FailWith;
using platform::FindHandleOf;

namespace {

struct LineFunction {
    DWORD function;
    int line;
    bool on;
};

constexpr LineFunction kLineFunctions[] = {
    {SETRTS, TIOCM_RTS, true},
    {CLRRTS, TIOCM_RTS, false},
    {SETDTR, TIOCM_DTR, true},
    {CLRDTR, TIOCM_DTR, false},
};

struct StatusLine {
    int line;
    DWORD bit;
};

constexpr StatusLine kStatusLines[] = {
    {TIOCM_CTS, MS_CTS_ON},
    {TIOCM_DSR, MS_DSR_ON},
    {TIOCM_RNG, MS_RING_ON},
    {TIOCM_CAR, MS_RLSD_ON},
};

bool AreKept(const COMMTIMEOUTS& timeouts) {
    return timeouts.ReadIntervalTimeout == MAXDWORD && timeouts.ReadTotalTimeoutMultiplier == 0 &&
           timeouts.ReadTotalTimeoutConstant == 0 && timeouts.WriteTotalTimeoutMultiplier == 0 &&
           timeouts.WriteTotalTimeoutConstant == 0;
}

} // namespace

BOOL GetCommProperties(HANDLE hFile, COMMPROP* lpCommProp) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    return lpCommProp ? port->GetProperties(*lpCommProp) : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL SetupComm(HANDLE hFile, DWORD dwInQueue, DWORD dwOutQueue) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->SetQueueSizes(dwInQueue, dwOutQueue) : FALSE;
}

BOOL GetCommState(HANDLE hFile, DCB* lpDCB) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    return lpDCB ? port->Driver().GetState(*lpDCB) : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL SetCommState(HANDLE hFile, DCB* lpDCB) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    return lpDCB ? port->Driver().SetState(*lpDCB) : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL SetCommTimeouts(HANDLE hFile, COMMTIMEOUTS* lpCommTimeouts) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    if (port->IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    return lpCommTimeouts && AreKept(*lpCommTimeouts) ? TRUE : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL EscapeCommFunction(HANDLE hFile, DWORD dwFunc) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    const auto row =
        std::find_if(std::begin(kLineFunctions), std::end(kLineFunctions),
                     [&](const LineFunction& known) { return known.function == dwFunc; });
    if (row == std::end(kLineFunctions))
        return FailWith(ERROR_INVALID_PARAMETER);
    return port->Driver().SetLines(row->line, row->on);
}

BOOL GetCommModemStatus(HANDLE hFile, LPDWORD lpModemStat) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    if (!lpModemStat)
        return FailWith(ERROR_INVALID_PARAMETER);
    int lines = 0;
    if (!port->Lines()->GetLines(lines))
        return FALSE;
    *lpModemStat = 0;
    for (const StatusLine& row : kStatusLines) {
        if (lines & row.line)
            *lpModemStat |= row.bit;
    }
    return TRUE;
}

BOOL ClearCommError(HANDLE hFile, LPDWORD lpErrors, COMSTAT* lpStat) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->ClearError(lpErrors, lpStat) : FALSE;
}

BOOL PurgeComm(HANDLE hFile, DWORD dwFlags) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->Purge(dwFlags) : FALSE;
}

BOOL SetCommMask(HANDLE hFile, DWORD dwEvtMask) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->Events().SetMask(dwEvtMask) : FALSE;
}

BOOL WaitCommEvent(HANDLE hFile, LPDWORD lpEvtMask, OVERLAPPED* lpOverlapped) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    return lpEvtMask ? port->Events().Start(*lpEvtMask, lpOverlapped)
                     : FailWith(ERROR_INVALID_PARAMETER);
}

HANDLE platform::GetCommHangupHandle(HANDLE hFile) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->HangupHandle() : nullptr;
}
