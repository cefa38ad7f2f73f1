#include "platform/objects/TransferRecord.h"

#include "platform/Error.h"

namespace platform {

void BeginTransfer(OVERLAPPED& record) {
    record.Internal = ERROR_IO_PENDING;
    record.InternalHigh = 0;
    if (record.hEvent != nullptr)
        ResetEvent(record.hEvent);
}

void EndTransfer(OVERLAPPED& record, DWORD error, DWORD count) {
    record.Internal = error;
    record.InternalHigh = count;
    if (record.hEvent != nullptr)
        SetEvent(record.hEvent);
}

BOOL ResultOf(const OVERLAPPED& record, LPDWORD moved) {
    *moved = static_cast<DWORD>(record.InternalHigh);
    const DWORD error = static_cast<DWORD>(record.Internal);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
}

} // namespace platform
