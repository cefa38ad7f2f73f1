// Serial communications, over the kernel's tty drivers.
//
// A port is opened, read, written and closed with the calls of platform/File.h. Any thread may call
// these on one port; reads are made by one thread at a time, and so are writes.
//
// Opening: raw, 8-bit clean input and output; speed, parity, data and stop bits and flow control
// stay as the driver has them, and the settings found come back at closing. Opening never blocks on
// carrier, flushes nothing (what the device already said is shown) and is exclusive: an advisory
// lock (flock) keeps out those who ask for it, and on all but pseudo-terminals TIOCEXCL keeps out
// the others but root; a second opener gets ERROR_ACCESS_DENIED. A device that speaks at this very
// moment may get some of it back: the kernel's terminals echo until they are made raw.
//
// Closing does not wait for output that the device does not take, and discards it; the drivers by
// themselves would wait half a minute.
//
// Received bytes: ReadFile returns at once with what is there, 0 bytes included. The port keeps a
// receive queue of its own of SetupComm's size, which ClearCommError and ReadFile fill from the
// driver in large reads. What the driver offers beyond it stays in the driver. A byte with a parity
// or framing error is received as it is; a break and an overrun add no byte. All are counted, see
// ClearCommError.
//
// Sent bytes: an overlapped WriteFile hands the driver what it takes at once; the rest is pending
// (FALSE, ERROR_IO_PENDING) and GetOverlappedResult carries it out, from the same buffer, which
// must stay in place until then. PurgeComm(PURGE_TXABORT) and CloseHandle end it with
// ERROR_OPERATION_ABORTED.
//
// A device that is gone (unplugged: poll says IN|HUP|ERR, reads give 0 bytes, other calls EIO; a
// pseudo-terminal whose other end closed: EIO or 0) makes every call fail with
// ERROR_DEVICE_NOT_CONNECTED, once the bytes received before it have been read. It stays so until
// the port is closed; a kept descriptor makes the device come back under another name, so close at
// once.
//
// A pseudo-terminal has no modem lines and is always 8N1 in the kernel: its lines can be set
// without effect and read as off, its data format can be set without effect, its error counts stay
// 0.
//
// All calls return FALSE with ERROR_INVALID_HANDLE for a handle that is no open port, with
// ERROR_DEVICE_NOT_CONNECTED for a device that is gone, and with ERROR_GEN_FAILURE when the driver
// refuses.
#pragma once

#include "platform/File.h"
#include "platform/Types.h"

#include <string>

// Line settings. The bit fields are those that this layer can carry out on Linux; fBinary is
// always 1.
struct DCB {
    DWORD DCBlength;
    DWORD BaudRate;
    DWORD fBinary : 1;
    DWORD fParity : 1;
    DWORD fOutxCtsFlow : 1;
    DWORD fOutxDsrFlow : 1;
    DWORD fDtrControl : 2;
    DWORD fDsrSensitivity : 1;
    DWORD fTXContinueOnXoff : 1;
    DWORD fOutX : 1;
    DWORD fInX : 1;
    DWORD fErrorChar : 1;
    DWORD fNull : 1;
    DWORD fRtsControl : 2;
    DWORD fAbortOnError : 1;
    DWORD fDummy2 : 17;
    WORD wReserved;
    WORD XonLim;
    WORD XoffLim;
    BYTE ByteSize;
    BYTE Parity;
    BYTE StopBits;
    char XonChar;
    char XoffChar;
    char ErrorChar;
    char EofChar;
    char EvtChar;
    WORD wReserved1;
};

inline constexpr BYTE NOPARITY = 0;
inline constexpr BYTE ODDPARITY = 1;
inline constexpr BYTE EVENPARITY = 2;
inline constexpr BYTE MARKPARITY = 3;
inline constexpr BYTE SPACEPARITY = 4;
inline constexpr BYTE ONESTOPBIT = 0;
inline constexpr BYTE ONE5STOPBITS = 1;
inline constexpr BYTE TWOSTOPBITS = 2;
inline constexpr DWORD DTR_CONTROL_DISABLE = 0;
inline constexpr DWORD DTR_CONTROL_ENABLE = 1;
inline constexpr DWORD RTS_CONTROL_DISABLE = 0;
inline constexpr DWORD RTS_CONTROL_ENABLE = 1;
inline constexpr DWORD RTS_CONTROL_HANDSHAKE = 2;

struct COMMPROP {
    WORD wPacketLength;
    WORD wPacketVersion;
    DWORD dwServiceMask;
    DWORD dwReserved1;
    DWORD dwMaxTxQueue;
    DWORD dwMaxRxQueue;
    DWORD dwMaxBaud;
    DWORD dwProvSubType;
    DWORD dwProvCapabilities;
    DWORD dwSettableParams;
    DWORD dwSettableBaud;
    WORD wSettableData;
    WORD wSettableStopParity;
    DWORD dwCurrentTxQueue;
    DWORD dwCurrentRxQueue;
    DWORD dwProvSpec1;
    DWORD dwProvSpec2;
    char16_t wcProvChar[2];
};
static_assert(sizeof(COMMPROP) == 64);

struct COMMTIMEOUTS {
    DWORD ReadIntervalTimeout;
    DWORD ReadTotalTimeoutMultiplier;
    DWORD ReadTotalTimeoutConstant;
    DWORD WriteTotalTimeoutMultiplier;
    DWORD WriteTotalTimeoutConstant;
};
inline constexpr DWORD MAXDWORD = 0xFFFFFFFF;

struct COMSTAT {
    DWORD fCtsHold : 1;
    DWORD fDsrHold : 1;
    DWORD fRlsdHold : 1;
    DWORD fXoffHold : 1;
    DWORD fXoffSent : 1;
    DWORD fEof : 1;
    DWORD fTxim : 1;
    DWORD fReserved : 25;
    DWORD cbInQue;
    DWORD cbOutQue;
};

// Error bits of ClearCommError.
inline constexpr DWORD CE_RXOVER = 0x0001;
inline constexpr DWORD CE_OVERRUN = 0x0002;
inline constexpr DWORD CE_RXPARITY = 0x0004;
inline constexpr DWORD CE_FRAME = 0x0008;
inline constexpr DWORD CE_BREAK = 0x0010;

inline constexpr DWORD MS_CTS_ON = 0x0010;
inline constexpr DWORD MS_DSR_ON = 0x0020;
inline constexpr DWORD MS_RING_ON = 0x0040;
inline constexpr DWORD MS_RLSD_ON = 0x0080;

inline constexpr DWORD SETRTS = 3;
inline constexpr DWORD CLRRTS = 4;
inline constexpr DWORD SETDTR = 5;
inline constexpr DWORD CLRDTR = 6;

inline constexpr DWORD PURGE_TXABORT = 0x0001;
inline constexpr DWORD PURGE_RXABORT = 0x0002;
inline constexpr DWORD PURGE_TXCLEAR = 0x0004;
inline constexpr DWORD PURGE_RXCLEAR = 0x0008;

// The port's properties: the current queue sizes (4096 each after opening), the rest zero.
// wPacketLength must be 64 on entry, else ERROR_INVALID_PARAMETER.
BOOL GetCommProperties(HANDLE hFile, COMMPROP* lpCommProp);

// The sizes of the receive queue and of the output queue. The receive queue never shrinks below
// what it holds; the output queue is the driver's and its size is only remembered. 1 to 16 MiB
// each, else ERROR_INVALID_PARAMETER.
BOOL SetupComm(HANDLE hFile, DWORD dwInQueue, DWORD dwOutQueue);

// Reads the line settings off the driver.
BOOL GetCommState(HANDLE hFile, DCB* lpDCB);

// Gives the driver other line settings and reads them back, because drivers replace what they
// cannot do without a word. ERROR_INVALID_PARAMETER when the speed in place is off by more than 3
// %, or the data format or flow control is not the one asked for; the driver's former settings are
// then put back. The same for what the kernel does not have: flow control by DSR or DTR, CTS flow
// control without RTS handshake or the reverse, speed 0. One and a half stop bits exist with 5 data
// bits only, two with 6 to 8. DTR and RTS move only when their control is another one than before.
BOOL SetCommState(HANDLE hFile, DCB* lpDCB);

// Takes the time-outs that every port has here: a read returns at once (0xFFFFFFFF, 0, 0), a write
// takes the time it takes (0, 0). ERROR_INVALID_PARAMETER for others.
BOOL SetCommTimeouts(HANDLE hFile, COMMTIMEOUTS* lpCommTimeouts);

// Raises or drops DTR or RTS (SETDTR, CLRDTR, SETRTS, CLRRTS; others: ERROR_INVALID_PARAMETER).
BOOL EscapeCommFunction(HANDLE hFile, DWORD dwFunc);

// The MS_ bits of the lines that are on.
BOOL GetCommModemStatus(HANDLE hFile, LPDWORD lpModemStat);

// The errors since the last call, from the differences of the driver's own counters, and the bytes
// that wait in the receive queue and the driver (cbInQue) and in the driver's output queue and a
// pending write (cbOutQue). A driver without counters reports no errors. Both out pointers may be
// null; with a null lpErrors the errors are left for the next call. cbInQue may exceed the receive
// queue's size, by what the driver holds; while a reader works the queue off, it may leave out what
// came since the queue was filled.
BOOL ClearCommError(HANDLE hFile, LPDWORD lpErrors, COMSTAT* lpStat);

// Discards received bytes (PURGE_RXCLEAR), bytes not yet sent (PURGE_TXCLEAR), and ends a pending
// write (PURGE_TXABORT; no read is ever pending, so PURGE_RXABORT has nothing to end).
BOOL PurgeComm(HANDLE hFile, DWORD dwFlags);

namespace platform {

// A handle, owned by the port, that is signalled once the port's device is gone and never by
// received bytes: for those who must leave the bytes where they are. Null with the calls' usual
// errors.
HANDLE GetCommHangupHandle(HANDLE hFile);

// The device path that a port name stands for: "COM3:" is "/dev/ttyS2"; a path stays as it is;
// empty for any other name.
std::string DevicePathOfPort(LPCSTR portName);

// The path of the serial device that stands in /dev under this name, itself or as a link; empty
// when there is none. Nothing is opened.
std::string FindSerialDevice(const std::string& name);

// Whether that process has the device open, as far as /proc lets this one see.
bool IsDeviceOpenIn(DWORD process, const std::string& devicePath);

// Whether /proc lets this process see anybody who has the device open.
bool IsDeviceUserSeen(const std::string& devicePath);

// One line, without a line end, for the user whose CreateFileA of a port failed with the given
// error: the path, the system's reason, and what helps (the group that owns the device, the process
// that has it open, the nearest name that exists).
std::string ExplainPortOpenFailure(LPCSTR portName, DWORD error);

} // namespace platform
