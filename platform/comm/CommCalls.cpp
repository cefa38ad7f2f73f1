#include "platform/Comm.h"

#include "platform/Error.h"
#include "platform/comm/CommPort.h"

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

constexpr LineFunction LINE_FUNCTIONS[] = {
    {SETRTS, TIOCM_RTS, true},
    {CLRRTS, TIOCM_RTS, false},
    {SETDTR, TIOCM_DTR, true},
    {CLRDTR, TIOCM_DTR, false},
};

struct StatusLine {
    int line;
    DWORD bit;
};

constexpr StatusLine STATUS_LINES[] = {
    {TIOCM_CTS, MS_CTS_ON},
    {TIOCM_DSR, MS_DSR_ON},
    {TIOCM_RNG, MS_RING_ON},
    {TIOCM_CAR, MS_RLSD_ON},
};

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
    return lpCommTimeouts ? port->SetTimeouts(*lpCommTimeouts) : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL EscapeCommFunction(HANDLE hFile, DWORD dwFunc) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    if (!port)
        return FALSE;
    const auto row =
        std::find_if(std::begin(LINE_FUNCTIONS), std::end(LINE_FUNCTIONS),
                     [&](const LineFunction& known) { return known.function == dwFunc; });
    if (row == std::end(LINE_FUNCTIONS))
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
    for (const StatusLine& row : STATUS_LINES) {
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

HANDLE platform::GetCommHangupHandle(HANDLE hFile) {
    const auto port = FindHandleOf<CCommPort>(hFile);
    return port ? port->HangupHandle() : nullptr;
}
