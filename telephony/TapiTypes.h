// The handles, callbacks, constants and results of the telephony service's published interface,
// version 1.4, as far as this system and its own service use them.
//
// Shared by the wrapper (CVTapi), the binding (CVTapiLibrary) and the service that answers them
// (services/telephony). Handles are numbers of the service, 0 is none. Instance values and the
// parameters of messages are wide enough for a pointer.
#pragma once

#include "platform/Types.h"

using HLINEAPP = DWORD;
using HLINE = DWORD;
using HCALL = DWORD;
using HPHONEAPP = DWORD;
using HPHONE = DWORD;

// Called on the thread that initialised the service, while it dispatches messages. hDevice is the
// line, call or phone that the message is about; dwInstance is what was given when it was opened.
using LINECALLBACK = void (*)(DWORD hDevice, DWORD dwMessage, DWORD_PTR dwInstance,
                              DWORD_PTR dwParam1, DWORD_PTR dwParam2, DWORD_PTR dwParam3);
using PHONECALLBACK = LINECALLBACK;

inline constexpr DWORD TAPI_API_VERSION = 0x00010004;

// Line messages. A reply carries the request's identifier and its result (0 or a negative status);
// a call state carries the state, its detail and, when it changed, the privilege.
inline constexpr DWORD LINE_CALLSTATE = 2;
inline constexpr DWORD LINE_CLOSE = 3;
inline constexpr DWORD LINE_LINEDEVSTATE = 8;
inline constexpr DWORD LINE_REPLY = 12;

inline constexpr DWORD PHONE_REPLY = 3;

inline constexpr DWORD LINECALLSTATE_IDLE = 0x00000001;
inline constexpr DWORD LINECALLSTATE_OFFERING = 0x00000002;
inline constexpr DWORD LINECALLSTATE_CONNECTED = 0x00000100;
inline constexpr DWORD LINECALLSTATE_PROCEEDING = 0x00000200;
inline constexpr DWORD LINECALLSTATE_DISCONNECTED = 0x00004000;

inline constexpr DWORD LINEBEARERMODE_VOICE = 0x00000001;
inline constexpr DWORD LINEBEARERMODE_PASSTHROUGH = 0x00000040;
inline constexpr DWORD LINEMEDIAMODE_DATAMODEM = 0x00000010;
inline constexpr DWORD LINEFEATURE_MAKECALL = 0x00000008;

inline constexpr DWORD LINECALLPRIVILEGE_NONE = 0x00000001;
inline constexpr DWORD LINECALLPRIVILEGE_MONITOR = 0x00000002;
inline constexpr DWORD LINECALLPRIVILEGE_OWNER = 0x00000004;

inline constexpr DWORD LINECALLSELECT_LINE = 0x00000001;
inline constexpr DWORD LINECALLSELECT_ADDRESS = 0x00000002;
inline constexpr DWORD LINECALLSELECT_CALL = 0x00000004;

inline constexpr DWORD LINECALLORIGIN_OUTBOUND = 0x00000001;
inline constexpr DWORD LINECALLREASON_DIRECT = 0x00000001;
inline constexpr DWORD LINECALLFEATURE_DROP = 0x00000080;

inline constexpr DWORD LINECALLPARAMFLAGS_ORIGOFFHOOK = 0x00000008;
inline constexpr DWORD LINEADDRESSMODE_ADDRESSID = 0x00000001;

inline constexpr DWORD LINEDEVSTATE_RINGING = 0x00000002;
inline constexpr DWORD LINEDEVSTATE_CONNECTED = 0x00000004;
inline constexpr DWORD LINEDEVSTATE_DISCONNECTED = 0x00000008;
inline constexpr DWORD LINEDEVSTATE_INSERVICE = 0x00000040;
inline constexpr DWORD LINEDEVSTATE_OUTOFSERVICE = 0x00000080;
inline constexpr DWORD LINEDEVSTATE_OPEN = 0x00000200;
inline constexpr DWORD LINEDEVSTATE_CLOSE = 0x00000400;
inline constexpr DWORD LINEDEVSTATE_REINIT = 0x00040000;
inline constexpr DWORD LINEDEVSTATE_REMOVED = 0x01000000;

inline constexpr DWORD PHONESTATE_CONNECTED = 0x00000002;
inline constexpr DWORD PHONESTATE_DISCONNECTED = 0x00000004;
inline constexpr DWORD PHONESTATE_RINGMODE = 0x00000080;
inline constexpr DWORD PHONESTATE_SUSPEND = 0x00040000;
inline constexpr DWORD PHONESTATE_REINIT = 0x00200000;
inline constexpr DWORD PHONESTATE_CAPSCHANGE = 0x00400000;
inline constexpr DWORD PHONESTATE_REMOVED = 0x00800000;
inline constexpr DWORD PHONEBUTTONMODE_KEYPAD = 0x00000008;
inline constexpr DWORD PHONEBUTTONSTATE_DOWN = 0x00000002;

inline constexpr DWORD STRINGFORMAT_ASCII = 0x00000001;
inline constexpr DWORD STRINGFORMAT_BINARY = 0x00000004;

// Results of the service: 0 or a positive request identifier is success, these are failures.
inline constexpr LONG LINEERR_ALLOCATED = static_cast<LONG>(0x80000001); // open in another program
inline constexpr LONG LINEERR_BADDEVICEID = static_cast<LONG>(0x80000002);
inline constexpr LONG LINEERR_CALLUNAVAIL = static_cast<LONG>(0x80000005);
inline constexpr LONG LINEERR_INCOMPATIBLEAPIVERSION = static_cast<LONG>(0x8000000C);
inline constexpr LONG LINEERR_INUSE = static_cast<LONG>(0x8000000F); // held by a device manager
inline constexpr LONG LINEERR_INVALADDRESS = static_cast<LONG>(0x80000010);
inline constexpr LONG LINEERR_INVALADDRESSID = static_cast<LONG>(0x80000011);
inline constexpr LONG LINEERR_INVALAPPHANDLE = static_cast<LONG>(0x80000014);
inline constexpr LONG LINEERR_INVALBEARERMODE = static_cast<LONG>(0x80000016);
inline constexpr LONG LINEERR_INVALCALLHANDLE = static_cast<LONG>(0x80000018);
inline constexpr LONG LINEERR_INVALCALLPARAMS = static_cast<LONG>(0x80000019);
inline constexpr LONG LINEERR_INVALCALLSELECT = static_cast<LONG>(0x8000001B);
inline constexpr LONG LINEERR_INVALCALLSTATE = static_cast<LONG>(0x8000001C);
inline constexpr LONG LINEERR_INVALDEVICECLASS = static_cast<LONG>(0x80000023);
inline constexpr LONG LINEERR_INVALLINEHANDLE = static_cast<LONG>(0x8000002B);
inline constexpr LONG LINEERR_INVALMEDIAMODE = static_cast<LONG>(0x8000002F);
inline constexpr LONG LINEERR_INVALPOINTER = static_cast<LONG>(0x80000035);
inline constexpr LONG LINEERR_INVALPRIVSELECT = static_cast<LONG>(0x80000036);
inline constexpr LONG LINEERR_NODEVICE = static_cast<LONG>(0x80000042); // gone
inline constexpr LONG LINEERR_NODRIVER = static_cast<LONG>(0x80000043); // is no serial device
inline constexpr LONG LINEERR_NOMEM = static_cast<LONG>(0x80000044);
inline constexpr LONG LINEERR_NOTOWNER = static_cast<LONG>(0x80000046); // no permission
inline constexpr LONG LINEERR_OPERATIONFAILED = static_cast<LONG>(0x80000048);
inline constexpr LONG LINEERR_OPERATIONUNAVAIL = static_cast<LONG>(0x80000049);
inline constexpr LONG LINEERR_RESOURCEUNAVAIL = static_cast<LONG>(0x8000004B);
inline constexpr LONG LINEERR_STRUCTURETOOSMALL = static_cast<LONG>(0x8000004D);
inline constexpr LONG LINEERR_UNINITIALIZED = static_cast<LONG>(0x80000050);
inline constexpr LONG LINEERR_REINIT = static_cast<LONG>(0x80000052);

inline constexpr LONG PHONEERR_BADDEVICEID = static_cast<LONG>(0x90000002);
inline constexpr LONG PHONEERR_INVALAPPHANDLE = static_cast<LONG>(0x90000007);
inline constexpr LONG PHONEERR_INVALPHONEHANDLE = static_cast<LONG>(0x90000013);
inline constexpr LONG PHONEERR_INVALPOINTER = static_cast<LONG>(0x90000015);
inline constexpr LONG PHONEERR_OPERATIONUNAVAIL = static_cast<LONG>(0x9000001D);
inline constexpr LONG PHONEERR_RESOURCEUNAVAIL = static_cast<LONG>(0x9000001F);
inline constexpr LONG PHONEERR_STRUCTURETOOSMALL = static_cast<LONG>(0x90000021);
inline constexpr LONG PHONEERR_REINIT = static_cast<LONG>(0x90000023);
