// The wait for the service's reply to a request, the same for lines and phones.
//
// The reply arrives in a message that the wait itself dispatches: the object's callback stores it
// here. The fields are the object's; all of them belong to the thread that waits.
#pragma once

#include "telephony/TapiStatus.h"

struct TapiReply {
    BOOL& bWaiting;
    DWORD& dwRequestID;
    BOOL& bReplied;
    LONG& lReplyResult;
    LPCSTR szWaiter; // as the trace calls it

    // For the callback: takes a reply to the request that was waited for last.
    void Take(DWORD dwID, LONG lResult) const;

    // Dispatches the thread's messages until the reply to that request is there, for up to so many
    // milliseconds, and returns its result; 0 at once for request 0. E_TAPI_TIMEOUT;
    // E_TAPI_REENTERED when another wait began in a dispatched message, as that other wait returns
    // too.
    LONG Wait(DWORD dwID, DWORD dwTimeout) const;
};
