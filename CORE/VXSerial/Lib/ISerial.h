// ISerial: a byte channel to a device, with line settings, control lines and queues.
//
// CVSerial is the one for serial ports; whoever needs a channel holds this interface only. A holder
// ends its use with Release. Any thread may call any operation; operations exclude each other,
// except IsOpen and GetLineStatus, which never wait for another one. Setters that take several
// settings keep a setting when given KEEP_SETTING.
#pragma once

#include "platform/Types.h"

inline constexpr DWORD KEEP_SETTING = 0xFFFFFFFF;

inline constexpr DWORD _FLOW_NONE = 0;
inline constexpr DWORD _FLOW_XONXOFF = 1;
inline constexpr DWORD _FLOW_RTSCTS = 2;
inline constexpr DWORD _FLOW_BOTH = 3;

inline constexpr DWORD _QUE_RX = 1;
inline constexpr DWORD _QUE_TX = 2;
inline constexpr DWORD _QUE_RXTX = 3;

inline constexpr DWORD _QUE_RXSIZE = 0;
inline constexpr DWORD _QUE_TXSIZE = 1;
inline constexpr DWORD _QUE_RXCOUNT = 2;
inline constexpr DWORD _QUE_TXCOUNT = 3;
inline constexpr DWORD _QUE_RXFREE = 4;
inline constexpr DWORD _QUE_TXFREE = 5;

inline constexpr DWORD LINE_TXPENDING = 0x01;
inline constexpr DWORD LINE_RXREADY = 0x02;
inline constexpr DWORD LINE_RTS = 0x04;
inline constexpr DWORD LINE_CTS = 0x08;
inline constexpr DWORD LINE_DSR = 0x10;
inline constexpr DWORD LINE_DCD = 0x20;
inline constexpr DWORD LINE_DTR = 0x40;
inline constexpr DWORD LINE_RING = 0x80;

inline constexpr DWORD _NOTIFY_DISABLE = 0;
inline constexpr DWORD _NOTIFY_ENABLE = 1;
inline constexpr DWORD _NOTIFY_RESUME = 2;
inline constexpr DWORD _NOTIFY_SUSPEND = 3;
inline constexpr DWORD _NOTIFY_REARM = 4;

// What the receivers of SetCommNotifyWnd and SetModemMonitorWnd are told; wParam is 0. lParam is
// the comm events (EV_ bits of platform/CommEvents.h), or the LINE_ bits.
inline constexpr UINT WM_VXCOMMNOTIFY = 0x0D29;
inline constexpr UINT WM_VXMODEMMONITOR = 0x0D2A;

inline constexpr IID IID_ISerial = {
    0x6B0E3C51, 0x2F4A, 0x4D7C, {0x9A, 0x1E, 0x5C, 0x70, 0xD2, 0x83, 0xB4, 0x17}};

class ISerial : public IUnknown {
  public:
    // Opens the port of the given path. FALSE when it cannot be opened (the last error tells why)
    // or is open already.
    virtual BOOL Open(LPCSTR szPort) = 0;

    // Closes the port; bytes accepted but not yet written are dropped. Always TRUE.
    virtual BOOL Close() = 0;

    virtual BOOL IsOpen() = 0;

    // Adopts a port handle that was opened elsewhere, in place of what is open. FALSE when the
    // threads cannot be started; the handle is then not closed.
    virtual BOOL AttachHandle(HANDLE hPort, BOOL bOverlapped) = 0;

    // Gives the port handle up without closing it; INVALID_HANDLE_VALUE when none is open.
    virtual HANDLE DetachHandle() = 0;

    // Accepts bytes for sending; blocks until all of them are in the transmit buffer. Returns the
    // bytes accepted, 0 on a closed port.
    virtual DWORD Write(LPCVOID pBuffer, DWORD dwCount) = 0;

    // Takes received bytes, never waits. Returns the bytes read, 0 when there are none.
    virtual DWORD Read(LPVOID pBuffer, DWORD dwCount) = 0;

    // Sizes in bytes of the receive queue and of the transmit buffer. FALSE when the port refuses.
    virtual BOOL SetBufferSizes(DWORD dwRXQueueSize, DWORD dwTXBufferSize) = 0;

    // One figure in bytes, by selector (_QUE_RXSIZE to _QUE_TXFREE).
    virtual DWORD GetQueueInfo(DWORD dwSelector) = 0;

    // Discards received bytes, bytes not yet sent, or both. FALSE on a closed port.
    virtual BOOL Flush(DWORD dwSelector) = 0;

    // Baud, parity code (0 none, 1 odd, 2 even, 3 mark, 4 space), data bits, stop-bit code (0 one,
    // 1 one and a half, 2 two). Stored, and applied when the port is open; FALSE when it refuses.
    virtual BOOL SetDataFormat(DWORD dwBaudRate, DWORD dwParity, DWORD dwByteSize,
                               DWORD dwStopBits) = 0;

    // The stored settings; null pointers are skipped. A baud rate that was never set is asked of
    // the port; FALSE when that fails.
    virtual BOOL GetDataFormat(LPDWORD lpBaudRate, LPDWORD lpParity, LPDWORD lpByteSize,
                               LPDWORD lpStopBits) = 0;

    // Sets LINE_DTR or LINE_RTS. FALSE on a closed port or when the driver refuses.
    virtual BOOL SetLine(DWORD dwLine, BOOL bState) = 0;

    // The LINE_ bits; 0 on a closed port.
    virtual DWORD GetLineStatus() = 0;

    // _FLOW_NONE to _FLOW_BOTH. Stored, and applied when the port is open and has a baud rate set.
    virtual BOOL SetFlowControl(DWORD dwFlowControl) = 0;
    virtual DWORD GetFlowControl() = 0;

    // The window that is sent WM_VXCOMMNOTIFY while the port is open and notification is enabled;
    // null for none. A notification follows only when the window has processed the one before.
    // Returns the previous receiver.
    virtual HWND SetCommNotifyWnd(HWND hWnd) = 0;

    // Switches notification on and off (_NOTIFY_ENABLE, _NOTIFY_DISABLE; at first off), holds it up
    // and lets it go on as often (_NOTIFY_SUSPEND, _NOTIFY_RESUME), or has the next one sent
    // although the last one may not have been processed, unless it is held up (_NOTIFY_REARM: after
    // a receiver that went before it was done). Other codes do nothing. Always TRUE.
    // _NOTIFY_REARM waits for no other operation.
    virtual BOOL CommNotifyControl(DWORD dwCode) = 0;

    // The window that is posted WM_VXMODEMMONITOR once a second while the port is open; null for
    // none. Returns the previous receiver.
    virtual HWND SetModemMonitorWnd(HWND hWnd) = 0;

  protected:
    ~ISerial() = default;
};

// Makes the channel for serial ports. lppSerial receives the interface with one reference;
// pUnkOuter is the outer object or null. S_OK, E_INVALIDARG (null lppSerial) or E_OUTOFMEMORY.
HRESULT CreateSerial(ISerial** lppSerial, IUnknown* pUnkOuter);
