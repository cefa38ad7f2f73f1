// The record of an overlapped transfer: how it is filled in, for GetOverlappedResult and the waits
// for its event. Under the lock of whoever carries the transfer out. Nothing outside platform/
// includes this header.
#pragma once

#include "platform/File.h"

namespace platform {

// The transfer is pending.
void BeginTransfer(OVERLAPPED& record);

// It has ended, with an error code and the bytes moved.
void EndTransfer(OVERLAPPED& record, DWORD error, DWORD count);

// What an ended transfer gives its caller: the bytes moved, and TRUE or FALSE with its error.
BOOL ResultOf(const OVERLAPPED& record, LPDWORD moved);

} // namespace platform
