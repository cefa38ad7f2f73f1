// Receiving while waiting for something else.
//
// A device that sends while it receives stops taking bytes once what it sends is not taken; a
// thread that waits to send must therefore go on receiving.
#pragma once

#include "platform/Types.h"
#include "platform/Wait.h"

namespace platform {

// Waits without limit for an object, with WaitForSingleObject's results, and meanwhile takes what
// arrives into the port's receive queue, which for that grows up to 1 MiB. What arrives beyond is
// left in the driver while the port is under flow control, by which the driver holds the device up;
// without, it is discarded, and *lpDiscarded set to TRUE (otherwise to FALSE). A port that is
// closed or gone is left alone. Counts as a read of the port: by one thread at a time.
DWORD WaitWhileReceiving(HANDLE hObject, HANDLE hPort, BOOL* lpDiscarded);

} // namespace platform
