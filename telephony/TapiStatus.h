// What the telephony operations return beside the service's own results: 0 or a positive request
// identifier is success, every failure is negative. The service's errors pass through unchanged.
#pragma once

#include "platform/Types.h"

inline constexpr LONG E_TAPI_FAILED = static_cast<LONG>(0xA0000001); // no such function, no key
inline constexpr LONG E_TAPI_NOLIBRARY = static_cast<LONG>(0xA0000002);
inline constexpr LONG E_TAPI_NOMEMORY = static_cast<LONG>(0xA0000003); // for a result
inline constexpr LONG E_TAPI_NODEVICE = static_cast<LONG>(0xA0000004); // none of the name, no more
inline constexpr LONG E_TAPI_LINEOPEN = static_cast<LONG>(0xA0000005); // one is open already
inline constexpr LONG E_TAPI_PHONEOPEN = static_cast<LONG>(0xA0000006);
inline constexpr LONG E_TAPI_CALLINPROGRESS = static_cast<LONG>(0xA0000007);
inline constexpr LONG E_TAPI_NOLINE = static_cast<LONG>(0xA0000008); // none is open
inline constexpr LONG E_TAPI_NOPHONE = static_cast<LONG>(0xA0000009);
inline constexpr LONG E_TAPI_NOCALL = static_cast<LONG>(0xA000000A);
inline constexpr LONG E_TAPI_TIMEOUT = static_cast<LONG>(0xA000000B);   // no reply in time
inline constexpr LONG E_TAPI_REENTERED = static_cast<LONG>(0xA000000C); // a second wait began
