// The numbered texts that the user sees.
//
// A constant table; any thread may call LoadString, nothing can fail.
#pragma once

inline constexpr unsigned IDS_HINT = 100;
inline constexpr unsigned IDS_CANNOT_OPEN = 101;
inline constexpr unsigned IDS_NO_TELEPHONY = 102;
inline constexpr unsigned IDS_NO_DEVICES = 103;
inline constexpr unsigned IDS_DEVICE_LIST = 104;
inline constexpr unsigned IDS_DEVICE_PROMPT = 105;
inline constexpr unsigned IDS_BAUD_MENU = 106;
inline constexpr unsigned IDS_CANCELED = 107;
inline constexpr unsigned IDS_INVALID_SELECTION = 108;
inline constexpr unsigned IDS_FLOW_MENU = 109;

// The text of a number; an empty text for a number that the table does not have.
const char* LoadString(unsigned id);
