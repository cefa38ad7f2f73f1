// To wait is to dispatch. The mark, the request and the reply belong to the object, not to the
// wait: a wait that begins in a message that another one dispatches takes the mark away, and the
// outer one, which looks at it after each message, sees that.
#include "telephony/TapiReply.h"

#include "diagnostics/ModuleTrace.h"
#include "platform/Clock.h"
#include "platform/Message.h"

namespace {

// Dispatches one message, or blocks until there is one or the time is over.
void DispatchOrBlock(DWORD dwMilliseconds) {
    MSG message;
    if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
        return;
    }
    // Without a queue there is nothing that could arrive.
    if (MsgWaitForMultipleObjects(0, nullptr, FALSE, dwMilliseconds, QS_ALLINPUT) == WAIT_FAILED)
        Sleep(dwMilliseconds);
}

} // namespace

void TapiReply::Take(DWORD dwID, LONG lResult) const {
    if (dwID != dwRequestID)
        return;
    lReplyResult = lResult;
    bReplied = TRUE;
}

LONG TapiReply::Wait(DWORD dwID, DWORD dwTimeout) const {
    if (dwID == 0)
        return 0;
    // Inside another wait this takes the mark from both of them.
    bWaiting = !bWaiting;
    dwRequestID = dwID;
    bReplied = FALSE; // what is there came too late for an earlier wait
    LONG result = E_TAPI_TIMEOUT;
    const DWORD dwStart = GetTickCount();
    for (;;) {
        if (bReplied) {
            result = lReplyResult;
            bReplied = FALSE;
            break;
        }
        const DWORD dwElapsed = GetTickCount() - dwStart;
        if (dwElapsed > dwTimeout) {
            DebugError("CVTapi::%s() - Function timeout", szWaiter);
            break;
        }
        if (!bWaiting) {
            DebugError("CVTapi::%s() - Reentrancy caused function to abort", szWaiter);
            result = E_TAPI_REENTERED;
            break;
        }
        DispatchOrBlock(dwTimeout - dwElapsed + 1);
    }
    bWaiting = FALSE;
    return result;
}
