#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/EventObject.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/MakeObject.h"

using platform::CEventObject;
using platform::FindHandleOf;

HANDLE CreateEventA(SECURITY_ATTRIBUTES* lpEventAttributes, BOOL bManualReset, BOOL bInitialState,
                    LPCSTR lpName) {
    if (lpEventAttributes != nullptr || lpName != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const auto event = platform::MakeObject<CEventObject>(bManualReset != FALSE);
    if (!event || !event->Create(bInitialState != FALSE))
        return nullptr;
    return platform::RegisterHandle(event);
}

BOOL SetEvent(HANDLE hEvent) {
    const auto event = FindHandleOf<CEventObject>(hEvent);
    if (!event)
        return FALSE;
    event->Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE hEvent) {
    const auto event = FindHandleOf<CEventObject>(hEvent);
    if (!event)
        return FALSE;
    event->Reset();
    return TRUE;
}
