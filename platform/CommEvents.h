// What happens on a serial port, for a thread that waits for it.
//
// Bytes are noticed at once. Carrier is noticed at once with a driver that tells of its lines'
// moves, within a tenth of a second with one that must be asked. Errors are noticed with the next
// of these, and on a port that has modem lines within a second. Nothing is asked regularly of a
// port without modem lines.
//
// Any thread may call these; one wait at a time is made on a port. Failures are those of
// platform/Comm.h, and ERROR_OPERATION_ABORTED when the port is closed meanwhile.
#pragma once

#include "platform/File.h"
#include "platform/Types.h"

inline constexpr DWORD EV_RXCHAR = 0x0001; // received bytes wait to be read
inline constexpr DWORD EV_RLSD = 0x0020;   // carrier has come or gone
inline constexpr DWORD EV_ERR = 0x0080;    // a break, an overrun, a parity or a framing error

// Says which events are waited for, and ends a wait in progress, with no event. A carrier's change
// counts from here on, an error from when errors were last left out of the mask. Does not ask
// whether the device is gone. FALSE with ERROR_INVALID_PARAMETER for other bits.
BOOL SetCommMask(HANDLE hFile, DWORD dwEvtMask);

// Waits until an event of the mask happens and stores those found. An overlapped wait that finds
// none at once is pending (FALSE, ERROR_IO_PENDING): GetOverlappedResult carries it out and stores
// the events, so both records must stay in place until then. With an empty mask there is nothing
// to wait for: TRUE and no event. ERROR_INVALID_PARAMETER while another wait is pending.
//
// A device that goes fails one wait with ERROR_DEVICE_NOT_CONNECTED. Waits after that one stay in
// progress until the mask is set or the port is closed, so that a thread in a loop of waits comes
// to rest.
BOOL WaitCommEvent(HANDLE hFile, LPDWORD lpEvtMask, OVERLAPPED* lpOverlapped);
